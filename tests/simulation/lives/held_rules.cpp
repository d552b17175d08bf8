#include "held_rules.h"

#include "life_texts.h"
#include "situations.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace lives {

using bench::rules::Command;
using bench::rules::Row;
using bench::rules::State;
using simulation::Entry;
using simulation::Kind;
using simulation::Network;
using simulation::Time;

namespace {

constexpr std::array<char const*, 8> k_words{"startingup",   "running",   "runnmcontrolled", "postrun",
                                             "shuttingdown", "preparing", "prepared4sd",     "resuming"};
constexpr std::uint64_t k_ecu_bit = 1U << 16U;  // the lowest of the third byte

State state_named(std::string const& name) {
    unsigned state = 0;
    while (state < k_words.size() && name != bench::rules::name(static_cast<State>(state))) {
        ++state;
    }
    return static_cast<State>(state);
}

Command command_of(std::string const& key) {
    static std::map<std::string, Command> const all{{"r", Command::run},
                                                    {"n", Command::nm_controlled},
                                                    {"s", Command::nm_controlled_prepare_sd},
                                                    {"p", Command::prepare_sd},
                                                    {"power", Command::shutdown}};
    return all.at(key);
}

/// The milliseconds that stand behind a word.
std::optional<Time> time_behind(std::string const& word, std::string const& text) {
    auto const place = text.find(word);
    return place == std::string::npos
               ? std::nullopt
               : std::optional<Time>(std::chrono::milliseconds(std::stoul(text.substr(place + word.size()))));
}

std::uint64_t number_of(std::string const& bytes) {
    std::istringstream text(bytes);
    std::uint64_t number = 0;
    unsigned byte = 0;
    for (unsigned place = 0; place < 8 && text >> std::hex >> byte; ++place) {
        number |= std::uint64_t(byte) << 8 * place;
    }
    return number;
}

std::uint64_t number_of(simulation::Bits const& bytes) {
    std::uint64_t number = 0;
    for (std::size_t place = 0; place < bytes.size() && place < 8; ++place) {
        number |= std::uint64_t(bytes[place]) << 8 * place;
    }
    return number;
}

}  // namespace

/// What the driver finds now.
class Held_rules::Situation : public bench::rules::Situation {
 public:
    explicit Situation(Held_rules& rules) : rules_(rules) {}

    Command command() const override { return rules_.queue_.empty() ? Command::none : rules_.queue_.front(); }
    bool nm_is_used() const override { return rules_.terms_.nm_usage; }
    bool nm_is_found() const override { return rules_.is_found_; }
    bool network_sleeps() const override { return rules_.is_asleep_; }
    bool ecu_is_kept() const override { return rules_.keeps_ecu(); }
    bool com_is_kept() const override { return rules_.keeps_com(); }
    bool is_to_prepare() const override { return rules_.is_to_prepare_; }
    bool time_is_over() const override { return rules_.ticks_ >= rules_.terms_.knockout; }
    bool clients_are_asked() const override {
        rules_.clients_.notifier().check();
        return rules_.clients_.notifier().is_running();
    }

 private:
    Held_rules& rules_;
};

void Held_rules::find(std::string const& what) {
    if (finding_.empty()) {
        finding_ = "at " + text_of(now_) + " in " + bench::rules::name(state_) + ": " + what;
    }
}

void Held_rules::take(Entry const& entry) {
    now_ = entry.at;
    if (has_ended_) {
        return find("something after the end: " + entry.what);
    }
    switch (entry.kind) {
        case Kind::state:
            if (entry.what != "the start") {
                decide(state_named(entry.who));
            }
            return;
        case Kind::word:
            return take_word(entry);
        case Kind::key:
            records_.insert(records_.end(), {command_of(entry.what), Command::none, Command::none, Command::none});
            return;
        case Kind::client:
            return clients_.take_client(now_, entry.who, entry.what);
        case Kind::machine_state:
            return take_machine_state(entry);
        case Kind::request:
            return take_request(entry);
        case Kind::network:
            rests_ = number_of(entry.what) == 0 ? rests_ + 1 : 0;
            return;
        case Kind::application:
            return take_application(entry.who, entry.what);
        case Kind::power_off:
            return take_power_off(entry.what);
        case Kind::neighbour:
            return take_neighbour(entry);
        case Kind::log:
            return take_log(entry.what);
        case Kind::end:
            if (entry.what != simulation::k_end_of_the_look) {
                check_way_taken();
            }
            if (entry.what == "the daemon has ended" && !must_end_) {
                find("the daemon has ended, and nobody wants it to");
            }
            has_ended_ = true;
            return;
        default:
            return;
    }
}

void Held_rules::wait(simulation::Life& life) {
    ++steps_;
    now_ = life.events().now();
    if (must_end_) {
        find("the driver goes on after its end");
    }
    if (has_waited_ && !went_) {
        decide(std::nullopt);
    }
    if (life.intends_to_suspend() != is_to_prepare_) {
        find(is_to_prepare_ ? "the intention to suspend is forgotten" : "an intention to suspend nobody has");
    }
    check_way_taken();
    clients_.check(now_);
    check_network(life);
    has_waited_ = true;
    went_ = false;
}

// A cycle reads one record; a key is four, of which the first is its command.
void Held_rules::read_record() {
    if (records_.empty()) {
        return;
    }
    auto const command = records_.front();
    records_.pop_front();
    if (command == Command::shutdown) {
        queue_.clear();
    }
    if (command != Command::none && command != last_) {
        queue_.push_back(command);
        last_ = command;
    }
}

void Held_rules::decide(std::optional<State> entered) {
    read_record();
    Situation const situation(*this);
    auto const number = lives::number_of(situation, clients_.notifier());
    auto const& row = bench::rules::deciding_row(state_, situation);
    coverage_.decided(row, number);
    bool const stays = row.to == State::stay;
    if (stays != !entered || (entered && row.to != *entered)) {
        find("\"" + bench::rules::name(row) + "\" decides and leads to " + bench::rules::name(row.to) +
             ", the machine " + (entered ? std::string("went to ") + bench::rules::name(*entered) : "stayed"));
    }
    using bench::rules::Intention;
    if (row.intention != Intention::stays) {
        is_to_prepare_ = row.intention == Intention::begins;
    }
    if (entered) {
        enter(*entered);
    } else if (state_ == State::post_run) {
        ++ticks_;
    }
}

void Held_rules::enter(State state) {
    check_way_taken();
    bool const is_fast = state_ == State::prepared_sd && terms_.channel_is_there;
    auto const way = 2 * terms_.diagnosis + terms_.application + 5 * terms_.period + held_up_;
    auto const turn = std::max(terms_.diagnosis, terms_.application);
    if ((state_ == State::preparing && now_ - since_ > way) ||
        (state_ == State::resuming && now_ - since_ > way + turn)) {
        find("it took " + text_of(now_ - since_));
    }
    state_ = state;
    since_ = now_;
    held_up_ = std::max(busy_until_ - now_, Time(0)) + longest_write_;
    went_ = true;
    ticks_ = 0;
    words_owed_ = 1;
    if (!queue_.empty()) {
        queue_.pop_front();
    }
    switch (state) {
        case State::preparing:
            clients_.begin_suspend();
            owe_power_off({"lookup vyn_per_daemon"});
            default_held_ = false;
            is_standing_by_ = true;
            break;
        case State::resuming:
            is_standing_by_ = false;
            clients_.begin_resume();
            default_held_ = true;
            break;
        case State::running:
            default_held_ = default_held_ || terms_.requests_on_entry;
            machine_states_owed_ = 1;
            break;
        case State::nm_controlled:
            default_held_ = false;
            break;
        case State::shutting_down:
            machine_states_owed_ = is_fast ? 0 : 1;
            must_end_ = must_end_ || !is_fast;
            if (is_fast) {
                owe_power_off(
                    {"terminate", "poweroff " + std::to_string(terms_.power_off / std::chrono::milliseconds(1))});
            }
            break;
        default:
            break;
    }
}

void Held_rules::check_way_taken() {
    if (words_owed_ != 0) {
        find("its word was not written");
    }
    if (machine_states_owed_ != 0) {
        find("its machine state was not asked for");
    }
    if (!power_off_owed_.empty()) {
        find("the power-off service was not told: " + power_off_owed_.front());
    }
}

void Held_rules::take_word(Entry const& entry) {
    if (entry.what != k_words.at(static_cast<unsigned>(state_))) {
        find("the word " + entry.what);
    } else if (words_owed_ == 0) {
        find("the word " + entry.what + " once more");
    }
    words_owed_ = 0;
}

void Held_rules::take_machine_state(Entry const& entry) {
    auto const* const wanted = state_ == State::running ? "Running" : "Shutdown";
    if (machine_states_owed_ == 0 || entry.what.find(wanted) == std::string::npos) {
        find("the machine state " + entry.what + " was asked for");
    }
    if (words_owed_ != 0) {
        find("the machine state before the word");
    }
    machine_states_owed_ = 0;
}

void Held_rules::owe_power_off(std::deque<std::string> lines) {
    if (terms_.channel_is_there) {
        power_off_owed_ = std::move(lines);
    }
}

void Held_rules::take_power_off(std::string const& line) {
    if (power_off_owed_.empty() || line != power_off_owed_.front()) {
        return find("the power-off service was told: " + line);
    }
    power_off_owed_.pop_front();
}

void Held_rules::take_application(std::string const& who, std::string const& what) {
    constexpr char const* k_failed = ", failed";
    if (what.size() > 8 && what.compare(what.size() - 8, 8, k_failed) == 0) {
        held_ = held_before_;
        return;
    }
    held_before_ = held_;
    bool const requests = what.rfind("requests", 0) == 0;
    auto const number_at = what.find(" ac ");
    auto const object = what.substr(9, number_at - 9);
    auto& of_one = held_[who];
    if (object == "ecu") {
        of_one.ecu = requests;
        return;
    }
    if (object == "wake-up") {
        of_one.wake_up = requests;
    } else if (auto const bits = behind("com ", object)) {
        auto const number = static_cast<std::uint32_t>(number_of(*bits));
        of_one.bits = requests ? of_one.bits | number : of_one.bits & ~number;
        bits_seen_ |= number;
    }
    if (requests) {
        of_one.number = number_at == std::string::npos ? 0 : std::stoul(what.substr(number_at + 4));
    } else if (!of_one.wake_up && of_one.bits == 0) {
        of_one.number = 0;
    }
}

void Held_rules::take_request(Entry const& entry) {
    if (!terms_.nm_usage || !is_found_) {
        find("network management was told without being used: " + entry.who + ' ' + entry.what);
    }
    is_exact_ = is_exact_ && entry.what.find("failed") == std::string::npos &&
                entry.what.find("unanswered") == std::string::npos;
    busy_until_ = std::max(busy_until_, now_) + longest_call_;
    held_up_ += longest_call_;
    // What Preparing itself does on its way in comes before the driver waits.
    bool const begins = went_ && state_ == State::preparing;
    if (is_standing_by_ && !begins) {
        find("a message during the suspend: " + entry.who + ' ' + entry.what);
    }
    // While a word is written slowly, applications go on.
    if (words_owed_ != 0 && state_ != State::starting_up && longest_write_ == Time(0)) {
        find("the network was told before the word");
    }
}

void Held_rules::take_neighbour(Entry const& entry) {
    if (entry.who == "manager" && entry.what == "offers") {
        ++rests_;
    } else if (entry.who == "manager" && (entry.what == "withdraws" || entry.what == "fails")) {
        is_exact_ = false;
    } else if (entry.who == "manager" && (entry.what == "silent" || entry.what.rfind("takes ", 0) == 0)) {
        longest_call_ = std::max(longest_call_, time_behind("takes ", entry.what).value_or(Network::k_patience));
    } else if (entry.who == "status-file") {
        longest_write_ = std::max(longest_write_, time_behind("after ", entry.what).value_or(Time(0)));
    } else if (entry.who == "keyboard") {
        records_.clear();
    } else if (entry.who == "service manager" && entry.what == "stops the daemon") {
        must_end_ = has_waited_;
    }
}

void Held_rules::take_log(std::string const& text) {
    if (text == "Initializing user data") {
        is_found_ = true;
        ++rests_;  // a manager that is found tells its state
    } else if (auto const activity = behind("Ecu state based on NM activity: ", text)) {
        is_asleep_ = activity->rfind("inactive", 0) == 0;
        if (is_asleep_ && rests_ < 2) {
            find("the network is taken for asleep after " + std::to_string(rests_) + " reports of rest");
        }
    } else {
        clients_.take_log(now_, text, state_ == State::preparing || state_ == State::resuming);
    }
}

bool Held_rules::keeps_ecu() const {
    return std::any_of(held_.begin(), held_.end(), [](auto const& one) { return one.second.ecu; });
}

bool Held_rules::keeps_com() const {
    return std::any_of(held_.begin(), held_.end(),
                       [](auto const& one) { return one.second.wake_up || one.second.bits != 0; });
}

std::uint64_t Held_rules::held_bits() const {
    std::uint64_t bits = keeps_ecu() ? k_ecu_bit : 0;
    for (auto const& [name, one] : held_) {
        bits |= one.bits;
    }
    return bits | (default_held_ ? number_of(terms_.default_pattern) : 0);
}

// What applications hold, and the states, is what is requested; during a suspend an ECU that was kept alive.
void Held_rules::check_network(simulation::Life& life) {
    if (!terms_.nm_usage || !is_found_ || !is_exact_) {
        return;
    }
    auto const requested = number_of(life.network().requested());
    // Bits of the default pattern that are also applications': no application's release takes them from the states, and
    // the states' release takes them from applications.
    auto const shared = number_of(terms_.default_pattern) & bits_seen_;
    auto const held = held_bits();
    if (is_standing_by_) {
        if ((requested & ~k_ecu_bit) != 0) {
            find("the network is requested during a suspend");
        }
    } else if (((requested ^ held) & ~shared) != 0 || (default_held_ && (requested & shared) != shared)) {
        std::ostringstream both;
        both << std::hex << "requested of the network is " << requested << ", held is " << held;
        find(both.str());
    }
    check_user_data(life);
}

// The area of the applications' bits is sent by each resume, also where it is otherwise left out.
void Held_rules::check_user_data(simulation::Life& life) {
    auto told = life.network().user_data();
    auto const wanted = is_standing_by_ ? simulation::Bits(told.size()) : user_data();
    told.resize(wanted.size());
    if (told != wanted) {
        find("the user data is " + simulation::text_of(told) + ", not " + simulation::text_of(wanted));
    }
}

// As the example configuration lays it out.
simulation::Bits Held_rules::user_data() const {
    constexpr unsigned k_most_numbers = 16;
    simulation::Bits data{0x80, 0, 0, 0, 0, 0};
    auto const add = [&data](std::size_t place, unsigned bits) { data[place] |= static_cast<std::uint8_t>(bits); };
    for (auto const& [name, one] : held_) {
        add(0, one.wake_up ? 0x40 : 0);
        if (one.number >= 1 && one.number <= k_most_numbers) {
            add(1 + (one.number - 1) / 8, 1U << (one.number - 1) % 8);
        }
        for (std::size_t place = 0; place < 3; ++place) {
            add(3 + place, one.bits >> 8 * place);
        }
    }
    data.resize(terms_.sends_cab_area ? 6 : 3);
    return data;
}

}  // namespace lives
