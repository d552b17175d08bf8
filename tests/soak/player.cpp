#include "player.h"

#include "asking.h"
#include "support/test_client.h"
#include "words.h"

#include <csignal>
#include <filesystem>
#include <utility>

namespace soak {

namespace {

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
constexpr std::uint32_t k_never_asked = 7;
constexpr std::size_t k_last_events = 60;
constexpr char const* k_socket = "/var/run/adaptive/ara_SM/ara_SM.socket";
constexpr char const* k_first_words = "AP_StateManger daemon started";
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

Circumstances circumstances_of(json const& settings) {
    Circumstances circumstances;
    circumstances.nm_usage = settings.at("StateManagerNMUsage");
    circumstances.period_ms = settings.at("StateManagerMainPeriod");
    circumstances.application_s = settings.at("ApplicationSuspendRequestTimeout");
    circumstances.diagnosis_s = settings.at("DMSuspendRequestTimeout");
    return circumstances;
}

bool is_cycle(Event const& event) {
    return event.kind == Kind::log && event.text == k_cycle;
}

bool is_news(Event const& event) {
    return event.kind != Kind::watchdog && !(event.kind == Kind::log && event.level > k_info);
}

}  // namespace

Player::Player(Script const& script, std::string programs, std::string const& example)
    : Player(configuration_of(script, example), script, std::move(programs)) {}

Player::Player(json const& configuration, Script script, std::string programs)
    : script_(std::move(script)),
      machine_(options_for(std::move(programs), configuration)),
      circumstances_(circumstances_of(configuration.at("ap_statemanager"))),
      rest_(machine_, circumstances_, holds_, losses_,
            configuration.at("ap_statemanager").at("NmUserDataConfig").at("CabBitsEnabled")) {}

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
        hear();
    }
    step_ = "the end";
    settle();
    if (findings_.empty()) {
        end(SIGTERM);
    }
}

// Without a log, a state that comes after the first one.
bool Player::shows_start(Event const& event) const {
    return circumstances_.log_has_hole ? event.kind == Kind::state_word && event.text != word_of(State::starting_up)
                                       : event.kind == Kind::log && event.text == k_first_words;
}

State Player::state() const {
    return words_->state().value_or(State::starting_up);
}

// `late` is a neighbour that comes after the daemon.
void Player::begin(Step const* late) {
    road_.mend(Clock::time_point::max());
    ++lives_;
    circumstances_.log_has_hole = false;
    circumstances_.is_supervised = true;
    may_resume_ = false;
    holds_ = {};
    losses_ = {};
    rest_.begin();
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
    machine_.update({});
    machine_.take_events();
    if (late != nullptr) {
        road_.act(*late);
    }
    has_started_ = false;
    machine_.start_daemon();
    // A signal before that is lost.
    for (auto const begin = Clock::now(); !has_started_ && findings_.empty() && Clock::now() - begin < k_start;) {
        road_.mend(Clock::now());
        machine_.update(k_poll);
        hear();
    }
    if (!has_started_) {
        find("the daemon did not start");
    }
}

void Player::end(int signal) {
    if (signal != 0) {
        machine_.signal_daemon(SIGCONT);
        machine_.signal_daemon(signal);
    }
    auto const status = machine_.await_end(k_end);
    hear();
    // The log may be late.
    for (auto const begin = Clock::now();
         status == 0 && !has_ended_log_ && !circumstances_.log_has_hole && Clock::now() - begin < k_start;) {
        machine_.update(k_poll);
        hear();
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
        case Verb::late_start:
            end(SIGTERM);
            begin(&step);
            break;
        case Verb::settle:
            settle();
            break;
        default:
            road_.act(step);
    }
}

// A new daemon would never take "Run", and nothing behind it.
void Player::press(std::string const& key) {
    may_resume_ = may_resume_ || key != "r";
    if (may_resume_) {
        machine_.press(key);
    }
}

void Player::act_on_client(Step const& step) {
    auto const& client = step.words[1];
    if (step.verb == Verb::late) {
        road_.tell(client, {{"do", "behave"}, {"as", "late"}, {"delay_ms", number_at_end(step)}});
    } else if (step.verb == Verb::behave) {
        road_.tell(client, {{"do", "behave"}, {"as", step.words.back()}});
    } else if (!machine_.has_ended_unawaited() && std::filesystem::exists(k_socket)) {
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
        road_.has_killed(name)) {
        return;
    }
    auto const life = lives_;
    try {
        machine_.tell(name, command);
        holds_.hear(step.words[1], told);
    } catch (std::runtime_error const& error) {
        wait(milliseconds(0));
        if (lives_ == life && state() != State::shutting_down && state() != State::starting_up) {
            find(error.what());
        }
    }
}

void Player::wait(Clock::duration time) {
    auto const end = Clock::now() + time;
    do {
        road_.mend(Clock::now());
        machine_.update(k_poll);
        hear();
        if (machine_.has_ended_unawaited()) {
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

void Player::hear() {
    for (auto const& event : machine_.take_events()) {
        if (event.kind == Kind::log && event.text.rfind("infrastructure exception", 0) == 0) {
            losses_.note();
        }
        has_started_ = has_started_ || shows_start(event);
        has_ended_log_ = has_ended_log_ || (event.kind == Kind::log && event.text == k_last_words);
        if (event.kind == Kind::state_word) {
            losses_.hear_state_word(event.text);
            suspends_ += event.text == "prepared4sd" ? 1 : 0;
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
            invariant->hear(event, [this](std::string const& what) { find(what); });
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

void Player::settle() {
    road_.mend(Clock::time_point::max());
    for (auto const& client : machine_.clients()) {
        road_.tell(client.name, {{"do", "behave"}, {"as", "well"}});
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
    return rest_.missing(state(), suspends_ != suspends_before_);
}

void Player::find(std::string const& what) {
    findings_.push_back("in " + step_ + ": " + what);
}

}  // namespace soak
