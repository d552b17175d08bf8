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

}  // namespace

/// What the driver finds now.
class Held_rules::Situation : public bench::rules::Situation {
 public:
    explicit Situation(Held_rules& rules) : rules_(rules) {}

    Command command() const override { return rules_.queue_.empty() ? Command::none : rules_.queue_.front(); }
    bool nm_is_used() const override { return rules_.terms_.nm_usage; }
    bool nm_is_found() const override { return rules_.network_.is_found(); }
    bool network_sleeps() const override { return rules_.network_.is_asleep(); }
    bool ecu_is_kept() const override { return rules_.network_.keeps_ecu(); }
    bool com_is_kept() const override { return rules_.network_.keeps_com(); }
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
        case Kind::restart:
            return restarts_.take_word(entry.who, entry.what);
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
            return network_.take_report(entry.what);
        case Kind::application:
            return take_application(entry);
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
            if (entry.what == simulation::k_end_of_the_daemon && !must_end_) {
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
    network_.check(life);
    restarts_.check();
    if (life.cycles() != steps_) {
        find("the driver has reported " + std::to_string(life.cycles()) + " times in " + std::to_string(steps_) +
             " cycles that it is alive");
    }
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
    held_up_ = std::max(network_.busy_until() - now_, Time(0)) + longest_write_;
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
            network_.begin_suspend();
            break;
        case State::resuming:
            network_.begin_resume();
            clients_.begin_resume();
            break;
        case State::running:
            if (terms_.requests_on_entry) {
                network_.hold_default(true);
            }
            machine_states_owed_ = 1;
            break;
        case State::nm_controlled:
            network_.hold_default(false);
            break;
        case State::shutting_down:
            machine_states_owed_ = is_fast ? 0 : 1;
            must_end_ = must_end_ || !is_fast;
            if (must_end_) {
                network_.end();
            }
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

void Held_rules::take_application(Entry const& entry) {
    if (entry.who == "diagnostics") {
        restarts_.take_call(entry.what);
    }
    network_.take_application(entry.who, entry.what);
}

void Held_rules::take_request(Entry const& entry) {
    // What Preparing itself does on its way in comes before the driver waits.
    network_.take_request(entry, went_ && state_ == State::preparing);
    held_up_ += network_.longest_call();
    // While a word is written slowly, applications go on.
    if (words_owed_ != 0 && state_ != State::starting_up && longest_write_ == Time(0)) {
        find("the network was told before the word");
    }
}

void Held_rules::take_neighbour(Entry const& entry) {
    if (entry.who == "manager") {
        network_.take_manager(now_, entry.what);
    } else if (entry.who == "status-file") {
        longest_write_ = std::max(longest_write_, time_behind("after ", entry.what).value_or(Time(0)));
    } else if (entry.who == "keyboard") {
        records_.clear();
    } else if (entry.who == "service manager" && entry.what == "stops the daemon") {
        must_end_ = has_waited_;
        network_.end();
    }
}

void Held_rules::take_log(std::string const& text) {
    if (!network_.take_log(text)) {
        clients_.take_log(now_, text, state_ == State::preparing || state_ == State::resuming);
    }
}

}  // namespace lives
