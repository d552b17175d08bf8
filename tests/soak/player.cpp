// Each step is done on the thread that plays; what it leaves behind is put right by a mend when its time is over. A
// stopped process is continued by a thread of its own, since the player may wait for an answer just then.

#include "player.h"

#include "base/hex.h"
#include "bench/json_lines/clock.h"
#include "support/test_client.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>
#include <utility>

namespace soak {

namespace {

using bench::monotonic_ns;
using bench::rules::State;
using bench::vehicle::Vehicle;
using nlohmann::json;
using std::chrono::milliseconds;

constexpr milliseconds k_poll{10};
constexpr milliseconds k_start{20'000};
constexpr milliseconds k_end{70'000};  // the daemon's own bound for its end is shorter
constexpr milliseconds k_quiet{800};   // the bus goes from ready sleep to sleep in less
constexpr std::chrono::seconds k_rest{40};
constexpr int k_quiet_cycles = 6;
constexpr int k_service_wait_ms = 6'000;
constexpr int k_by_signal = 128;
constexpr int k_info = 4;
constexpr unsigned k_busy_processes = 3;
#ifdef SANITIZED
constexpr long k_growth_kb = 1'000'000;  // a sanitizer keeps what was freed
#else
constexpr long k_growth_kb = 3'072;
#endif
constexpr std::int64_t k_ns_per_ms = 1'000'000;
constexpr std::uint8_t k_default_bit = 0x01;  // of the first byte
constexpr std::int64_t k_until_found = 3'000 * k_ns_per_ms;
constexpr std::int64_t k_late_ms = 100;  // a process that is to go on waits for a processor first
constexpr std::uint32_t k_never_asked = 7;
constexpr std::size_t k_last_events = 60;
constexpr char const* k_socket = "/var/run/adaptive/ara_SM/ara_SM.socket";
constexpr char const* k_last_words = "AP_StateManger daemon shutting down";
constexpr char const* k_cycle = "Starting AP_StateManager run_cyclic_task";

bench::vehicle::Options options_for(std::string programs, json const& configuration) {
    bench::vehicle::Options options;
    options.programs = std::move(programs);
    options.configuration = configuration.dump();
    options.with_network = true;
    return options;
}

json configuration_of(Script const& script, std::string const& example) {
    auto configuration = json::parse(example);
    auto& settings = configuration["ap_statemanager"];
    settings["DefautNMRequestPattern"] = {k_default_bit, 0, 0, 0, 0, 0};
    settings["MaxNumberOfApplicationsRequestNetwork"] = settings["MaxNumberOfCWURequest"] = 2;
    settings["ApplicationsRequestNetworkConfig"] = {{{"NetworkAliveInterfaceInstance", "1"}},
                                                    {{"NetworkAliveInterfaceInstance", "2"}}};
    settings["CWURequestConfig"] = {{{"CWUInterfaceInstance", "1"}}, {{"CWUInterfaceInstance", "2"}}};
    for (auto const& setting : script.settings) {
        settings[setting.name] = json::parse(setting.value);
    }
    return configuration;
}

unsigned number_at_end(Step const& step) {
    return static_cast<unsigned>(std::stoul(step.words.back()));
}

/// Of what the step is about: the words between its first one and "for".
std::string name_in(Step const& step) {
    std::string name;
    for (auto word = step.words.begin() + 1; word != step.words.end() && *word != "for"; ++word) {
        name += (name.empty() ? "" : " ") + *word;
    }
    return name;
}

std::vector<std::uint8_t> bytes_of(json const& hex) {
    return base::from_hex(hex.get<std::string>()).value_or(std::vector<std::uint8_t>());
}

std::string hex(Holds::Bytes const& bytes) {
    return base::to_hex(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

bool is_cycle(Event const& event) {
    return event.kind == Kind::log && event.text == k_cycle;
}

bool is_news(Event const& event) {
    return event.kind != Kind::watchdog && !(event.kind == Kind::log && event.level > k_info);
}

}  // namespace

Player::Player(Script script, std::string programs, std::string const& example)
    : script_(std::move(script)), settings_(configuration_of(script_, example)) {
    machine_ = std::make_unique<Vehicle>(options_for(std::move(programs), settings_));
    settings_ = settings_.at("ap_statemanager");
    circumstances_.nm_usage = settings_.at("StateManagerNMUsage");
    circumstances_.period_ms = settings_.at("StateManagerMainPeriod");
    circumstances_.application_s = settings_.at("ApplicationSuspendRequestTimeout");
    circumstances_.diagnosis_s = settings_.at("DMSuspendRequestTimeout");
}

Player::~Player() {
    mend(Clock::time_point::max());
}

std::vector<std::string> Player::play() {
    try {
        play_steps();
    } catch (std::exception const& error) {
        find(error.what());
    }
    return findings_;
}

void Player::play_steps() {
    begin();
    unsigned number = 0;
    for (auto const& step : script_.steps) {
        wait(milliseconds(step.after_ms));
        if (!findings_.empty()) {
            return;
        }
        step_ = "step " + std::to_string(++number) + ", \"" + joined(step.words) + '"';
        circumstances_.happened.insert(step.verb);
        act(step);
        take_in();
    }
    step_ = "the end";
    settle();
    if (findings_.empty()) {
        end(SIGTERM);
    }
}

State Player::state() const {
    return words_->state().value_or(State::starting_up);
}

void Player::begin() {
    mend(Clock::time_point::max());
    ++lives_;
    circumstances_.log_has_hole = false;
    circumstances_.is_supervised = true;
    may_resume_ = false;
    holds_ = {};
    lost_ = Lost::nothing;
    first_use_.reset();
    circumstances_.stalls.clear();
    has_ended_log_ = false;
    suspends_before_ = suspends_;
    last_news_ = Clock::now();
    quiet_cycles_ = 0;
    invariants_.clear();
    auto words = std::make_unique<Words>();
    words_ = words.get();
    invariants_.push_back(std::move(words));
    auto way = std::make_unique<Way>(circumstances_, holds_);
    way_ = way.get();
    invariants_.push_back(std::move(way));
    invariants_.push_back(std::make_unique<Asking>(circumstances_));
    invariants_.push_back(std::make_unique<Budget>(circumstances_));
    invariants_.push_back(std::make_unique<Beats>(circumstances_));
    invariants_.push_back(std::make_unique<Complaints>(circumstances_));
    machine_->update({});
    machine_->take_events();
    machine_->start_daemon();
    // A signal before that is lost.
    if (!machine_->await(Kind::log, "AP_StateManger daemon started", 0, k_start)) {
        find("the daemon did not start");
    }
    take_in();
}

void Player::end(int signal) {
    if (signal != 0) {
        machine_->signal_daemon(SIGCONT);
        machine_->signal_daemon(signal);
    }
    auto const status = machine_->await_end(k_end);
    take_in();
    // The log may be late.
    for (auto const begin = Clock::now();
         status == 0 && !has_ended_log_ && !circumstances_.log_has_hole && Clock::now() - begin < k_start;) {
        machine_->update(k_poll);
        take_in();
    }
    if (status == 0 && !has_ended_log_ && !circumstances_.log_has_hole) {
        find("the log's last words are missing");
    }
    auto const expected = signal == SIGKILL ? k_by_signal + SIGKILL : 0;
    if (status != expected) {
        find("the daemon ended " + (status ? "with status " + std::to_string(*status) : std::string("not at all")));
    }
}

void Player::act(Step const& step) {
    switch (step.verb) {
        case Verb::key:
            press(step.words.back());
            break;
        case Verb::behave:
        case Verb::late:
        case Verb::report:
            act_on_client(step);
            break;
        case Verb::ecu:
        case Verb::com:
        case Verb::wake_up:
        case Verb::drop:
            act_on_application(step);
            break;
        case Verb::restart:
            end(step.words.back() == "KILL" ? SIGKILL : SIGTERM);
            begin();
            break;
        case Verb::settle:
            settle();
            break;
        default:
            act_on_road(step);
    }
}

// A new daemon would never take "Run", and nothing behind it.
void Player::press(std::string const& key) {
    may_resume_ = may_resume_ || key != "r";
    if (may_resume_) {
        machine_->press(key);
    }
}

void Player::act_on_client(Step const& step) {
    auto const& client = step.words[1];
    if (step.verb == Verb::late) {
        tell(client, {{"do", "behave"}, {"as", "late"}, {"delay_ms", number_at_end(step)}});
    } else if (step.verb == Verb::behave) {
        tell(client, {{"do", "behave"}, {"as", step.words.back()}});
    } else if (!machine_->has_ended_unawaited() && std::filesystem::exists(k_socket)) {
        test_support::Test_client(k_socket, "stranger", "kOn").answer(k_never_asked, "kOn");
    }
}

void Player::act_on_application(Step const& step) {
    auto const name = "application " + step.words[1];
    json command{{"do", step.verb == Verb::drop ? "release" : "request"}, {"what", step.words[3]}};
    if (step.words[3] == "com_alive") {
        command["bits"] = step.words[4];
    }
    if (step.verb == Verb::com || step.verb == Verb::wake_up) {
        command["ac"] = number_at_end(step);
    }
    auto const told = command;
    command["wait_ms"] = k_service_wait_ms;
    if (!circumstances_.nm_usage || state() == State::starting_up || state() == State::shutting_down ||
        lasts(Verb::kill, name)) {
        return;
    }
    auto const life = lives_;
    try {
        machine_->tell(name, command);
        holds_.take(step.words[1], told);
    } catch (std::runtime_error const& error) {
        wait(milliseconds(0));
        if (lives_ == life && state() != State::shutting_down && state() != State::starting_up) {
            find(error.what());
        }
    }
}

void Player::act_on_road(Step const& step) {
    switch (step.verb) {
        case Verb::stop:
            stop(step);
            break;
        case Verb::freeze:
            freeze(step);
            break;
        case Verb::busy:
            make_busy(step);
            break;
        case Verb::kill:
            kill(step);
            break;
        case Verb::withdraw:
            withdraw(step);
            break;
        case Verb::need:
            tell("other node", {{"do", "request"}, {"bits", step.words.back()}});
            break;
        case Verb::rest:
            tell("other node", {{"do", "release"}, {"bits", "ffffffffffff"}});
            break;
        default:
            if (tell("other node", {{"do", "silence"}})) {
                for_a_while(step, [this] { tell("other node", {{"do", "speak"}}); });
            }
    }
}

void Player::stop(Step const& step) {
    auto const name = name_in(step);
    if (lasts(Verb::kill, name) || lasts(Verb::stop, name) || (name == "daemon" && machine_->has_ended_unawaited()) ||
        !runs(name)) {
        return;
    }
    auto const process = machine_->process(name).pid();
    auto const time = milliseconds(number_at_end(step));
    ::kill(process, SIGSTOP);
    stall(time);
    auto continued = std::make_shared<std::future<void>>(std::async(std::launch::async, [process, time] {
        std::this_thread::sleep_for(time);
        ::kill(process, SIGCONT);
    }));
    for_a_while(step, [continued] { continued->wait(); });
}

// All but the hypervisor stand still, so the player waits as well.
void Player::freeze(Step const& step) {
    auto const time = milliseconds(number_at_end(step));
    if (!freezer_) {
        try {
            freezer_.emplace();
        } catch (std::runtime_error const& error) {
            cannot_freeze_ = error.what();
            return;
        }
    }
    stall(time);
    freezer_->enclose_all_but(machine_->hypervisor().process().pid());
    freezer_->freeze();
    std::this_thread::sleep_for(time);
    freezer_->thaw();
}

void Player::make_busy(Step const& step) {
    stall(milliseconds(number_at_end(step)));
    auto loops = std::make_shared<std::vector<std::unique_ptr<bench::Child_process>>>();
    for (unsigned count = 0; count < k_busy_processes; ++count) {
        loops->push_back(std::make_unique<bench::Child_process>(
            std::vector<std::string>{"sh", "-c", "while :; do :; done"}, std::vector<std::string>()));
    }
    for_a_while(step, [loops] {
        for (auto& loop : *loops) {
            loop->signal(SIGKILL);
        }
    });
}

void Player::kill(Step const& step) {
    auto const name = name_in(step);
    if (lasts(Verb::kill, name) || (name == "node" && lasts(Verb::withdraw))) {
        return;
    }
    machine_->kill(name);
    stall(milliseconds(number_at_end(step)));
    bool const is_manager = name == "node";
    lost_ = is_manager ? Lost::something : lost_;
    circumstances_.log_has_hole = circumstances_.log_has_hole || name == "log daemon";
    circumstances_.is_supervised = circumstances_.is_supervised && name != "bus";
    for_a_while(step, [this, name, is_manager] {
        machine_->revive(name);
        if (is_manager) {
            lose();
        }
    });
}

void Player::withdraw(Step const& step) {
    if (!lasts(Verb::kill, "node") && !lasts(Verb::withdraw) && tell("node", {{"do", "withdraw"}})) {
        lose();
        for_a_while(step, [this] {
            tell("node", {{"do", "offer"}});
            lose();
        });
    }
}

// What the daemon asks for is lost, and may be for as long as it takes to hear of the offer.
void Player::lose() {
    lost_ = Lost::something;
    lossy_until_ = monotonic_ns() + k_until_found;
}

void Player::stall(milliseconds time) {
    auto const now = monotonic_ns();
    circumstances_.stalls.push_back({now, now + (time.count() + k_late_ms) * k_ns_per_ms});
}

bool Player::runs(std::string const& name) {
    try {
        return !machine_->process(name).status();
    } catch (std::runtime_error const&) {
        return false;
    }
}

void Player::for_a_while(Step const& step, std::function<void()> action) {
    mends_.push_back({Clock::now() + milliseconds(number_at_end(step)), step.verb, name_in(step), std::move(action)});
}

bool Player::lasts(Verb verb, std::string const& name) const {
    return std::any_of(mends_.begin(), mends_.end(),
                       [&](Mend const& mend) { return mend.verb == verb && (name.empty() || mend.name == name); });
}

void Player::mend(Clock::time_point now) {
    for (auto mend = mends_.begin(); mend != mends_.end();) {
        if (mend->at > now) {
            ++mend;
            continue;
        }
        auto const action = std::move(mend->action);
        mend = mends_.erase(mend);
        action();
        mend = mends_.begin();
    }
}

void Player::wait(Clock::duration time) {
    auto const end = Clock::now() + time;
    do {
        mend(Clock::now());
        machine_->update(k_poll);
        take_in();
        if (machine_->has_ended_unawaited()) {
            end_by_itself();
        }
    } while (Clock::now() < end && findings_.empty());
}

void Player::end_by_itself() {
    end(0);
    if (state() != State::shutting_down) {
        find("the daemon ended by itself");
    }
    if (findings_.empty()) {
        begin();
    }
}

void Player::take_in() {
    for (auto const& event : machine_->take_events()) {
        if (event.kind == Kind::log && event.text.rfind("infrastructure exception", 0) == 0) {
            lost_ = Lost::something;
        }
        has_ended_log_ = has_ended_log_ || (event.kind == Kind::log && event.text == k_last_words);
        if (event.kind == Kind::state_word) {
            follow_losses(event.text);
        }
        if (is_news(event)) {
            last_.push_back(event);
            last_news_ = Clock::now();
            quiet_cycles_ = 0;
            if (last_.size() > k_last_events) {
                last_.pop_front();
            }
        }
        quiet_cycles_ += is_cycle(event) ? 1 : 0;
        for (auto const& invariant : invariants_) {
            invariant->take(event, [this](std::string const& what) { find(what); });
        }
    }
}

std::string Player::last_events() const {
    std::string text;
    for (auto const& event : last_) {
        text += std::to_string(event.time / k_ns_per_ms) + ' ' + bench::vehicle::name(event.kind) + ": " + event.text +
                '\n';
    }
    return text;
}

// A resume asks for all that is held, but does not give back what a lost call should have.
void Player::follow_losses(std::string const& word) {
    if (word == "resuming" && lost_ == Lost::something && monotonic_ns() > lossy_until_) {
        lost_ = Lost::until_resumed;
    } else if (word == "running" && lost_ == Lost::until_resumed) {
        lost_ = Lost::releases;
    }
    suspends_ += word == "prepared4sd" ? 1 : 0;
}

void Player::settle() {
    mend(Clock::time_point::max());
    for (auto const& client : machine_->clients()) {
        tell(client.name, {{"do", "behave"}, {"as", "well"}});
    }
    std::string missing;
    auto const end = Clock::now() + k_rest;
    do {
        wait(k_poll);
        bool const is_quiet = Clock::now() - last_news_ > k_quiet && quiet_cycles_ >= k_quiet_cycles;
        missing = is_quiet ? this->missing() : "a rest: something goes on";
    } while (!missing.empty() && findings_.empty() && Clock::now() < end);
    if (!missing.empty() && findings_.empty()) {
        find("still missing: " + missing);
    }
    if (findings_.empty() && way_->is_held_up()) {
        this->end(SIGTERM);
        begin();
    }
}

std::string Player::missing() {
    for (auto const& invariant : invariants_) {
        auto missing = invariant->missing_at_rest();
        if (!missing.empty()) {
            return missing;
        }
    }
    for (auto const& client : machine_->clients()) {
        if (!client.is_connected || !client.owed.empty()) {
            return client.name + (client.is_connected ? "'s answer" : "'s connection");
        }
    }
    auto missing = missing_of_network();
    return missing.empty() ? missing_of_resources() : missing;
}

std::string Player::missing_of_network() {
    auto const now = state();
    auto const node = machine_->tell("node", {{"do", "list"}});
    auto const requests = bytes_of(node.at("requests"));
    auto const user_data = bytes_of(node.at("user_data"));
    if (lost_ == Lost::something || lost_ == Lost::until_resumed || now == State::starting_up) {
        return {};
    }
    bool const is_suspended = now == State::preparing || now == State::prepared_sd || now == State::shutting_down;
    auto wanted = circumstances_.nm_usage && !is_suspended ? holds_.requests() : Holds::Bytes{};
    if (circumstances_.nm_usage && now == State::running) {
        wanted[0] |= k_default_bit;
    }
    for (std::size_t place = 0; place < Holds::k_bytes; ++place) {
        unsigned const may_be = is_suspended && place == 2 && holds_.have_kept_ecu_alive() ? 1U : 0U;
        unsigned const is_more = requests.at(place) & ~wanted.at(place) & ~may_be;
        unsigned const is_less = wanted.at(place) & ~requests.at(place);
        if (is_less != 0 || (is_more != 0 && lost_ == Lost::nothing)) {
            return "the network is asked for " + base::to_hex(requests) + ", not " + hex(wanted);
        }
    }
    auto const data = circumstances_.nm_usage && !is_suspended ? holds_.user_data() : Holds::Bytes{};
    std::size_t const sent = settings_.at("NmUserDataConfig").at("CabBitsEnabled") ? 6 : 3;
    for (std::size_t place = 0; place < sent; ++place) {
        if ((place < user_data.size() ? user_data[place] : 0) != data.at(place)) {
            return "the user data is " + base::to_hex(user_data) + ", not " + hex(data);
        }
    }
    return {};
}

// Compared with the first rest in the same state after a suspend, when all that is made at the first time is there.
std::string Player::missing_of_resources() {
    if (state() != State::running || suspends_ == suspends_before_) {
        return {};
    }
    auto const now = used();
    if (!first_use_) {
        first_use_ = now;
    }
    if (now.descriptors > first_use_->descriptors) {
        return "a descriptor: there are " + std::to_string(now.descriptors) + ", first were " +
               std::to_string(first_use_->descriptors);
    }
    if (now.threads > first_use_->threads) {
        return "a thread: there are " + std::to_string(now.threads) + ", first were " +
               std::to_string(first_use_->threads);
    }
    if (now.memory_kb > first_use_->memory_kb + k_growth_kb) {
        return "memory: there are " + std::to_string(now.memory_kb) + " KiB, first were " +
               std::to_string(first_use_->memory_kb);
    }
    return {};
}

Player::Used Player::used() {
    auto const folder = "/proc/" + std::to_string(machine_->daemon().pid());
    Used used;
    for (auto const& entry : std::filesystem::directory_iterator(folder + "/fd")) {
        used.descriptors += entry.path().empty() ? 0 : 1;
    }
    std::ifstream status(folder + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("Threads:", 0) == 0) {
            used.threads = std::stol(line.substr(8));
        } else if (line.rfind("RssAnon:", 0) == 0) {
            used.memory_kb = std::stol(line.substr(8));
        }
    }
    return used;
}

// One that is killed is told nothing.
bool Player::tell(std::string const& neighbour, json const& command) {
    if (lasts(Verb::kill, neighbour)) {
        return false;
    }
    try {
        machine_->tell(neighbour, command);
    } catch (std::runtime_error const&) {
        machine_->update({});
        machine_->tell(neighbour, command);  // a client that has just crashed is started again now
    }
    return true;
}

void Player::find(std::string const& what) {
    findings_.push_back("in " + step_ + ": " + what);
}

}  // namespace soak
