#include "invariants.h"

#include <algorithm>
#include <utility>

namespace soak {

namespace {

using bench::rules::Command;
using bench::rules::Row;
using bench::rules::State;
using exploration::Group;
using exploration::Mode;

constexpr std::int64_t k_ns_per_ms = 1'000'000;
constexpr std::int64_t k_ns_per_s = 1'000'000'000;
constexpr std::int64_t k_slack = 3 * k_ns_per_s;  // that a busy machine may be late
constexpr int k_warning = 3;

constexpr char const* k_words[] = {"startingup",   "running",   "runnmcontrolled", "postrun",
                                   "shuttingdown", "preparing", "prepared4sd",     "resuming"};

std::optional<State> state_of_word(std::string const& word) {
    auto const* const found = std::find(std::begin(k_words), std::end(k_words), word);
    return found == std::end(k_words) ? std::nullopt : std::optional(static_cast<State>(found - std::begin(k_words)));
}

std::optional<State> state_named(std::string const& name) {
    for (unsigned state = 0; state < static_cast<unsigned>(State::stay); ++state) {
        if (name == bench::rules::name(static_cast<State>(state))) {
            return static_cast<State>(state);
        }
    }
    return std::nullopt;
}

Command command_named(std::string const& name) {
    static std::map<std::string, Command> const all{{"Run", Command::run},
                                                    {"NmControlled", Command::nm_controlled},
                                                    {"NMControlledPrepareSD", Command::nm_controlled_prepare_sd},
                                                    {"PrepareSD", Command::prepare_sd},
                                                    {"Shutdown", Command::shutdown}};
    auto const found = all.find(name);
    return found == all.end() ? Command::none : found->second;
}

/// What stands behind a text's beginning; nothing when it begins otherwise.
std::optional<std::string> behind(std::string const& begin, std::string const& text) {
    return text.rfind(begin, 0) == 0 ? std::optional(text.substr(begin.size())) : std::nullopt;
}

std::string word_at(std::string const& text, std::size_t place) {
    auto const begin = text.find_first_not_of(" ,", place);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_first_of(" ,", begin) - begin);
}

bool is_of_daemon(Event const& event) {
    return event.kind == Kind::log && event.application == "STMG";
}

constexpr unsigned k_guesses = 1U << 5U;  // of what a cycle found of network, applications and time

std::string in_ms(std::int64_t time) {
    return std::to_string(time / k_ns_per_ms) + " ms";
}

}  // namespace

std::int64_t Circumstances::stalled_in(std::int64_t begin, std::int64_t end) const {
    std::int64_t sum = 0;
    for (auto const& stall : stalls) {
        sum += std::max<std::int64_t>(0, std::min(end, stall.end) - std::max(begin, stall.begin));
    }
    return sum;
}

void Words::take(Event const& event, Finding const& finding) {
    if (event.kind != Kind::state_word) {
        return;
    }
    auto const next = state_of_word(event.text);
    auto const& rows = bench::rules::rows();
    bool const may_follow =
        next && (state_ ? std::any_of(rows.begin(), rows.end(),
                                      [&](Row const& row) { return row.from == *state_ && row.to == *next; })
                        : *next == State::starting_up);
    if (!may_follow) {
        finding("the word " + event.text + " after " +
                (state_ ? k_words[static_cast<unsigned>(*state_)] : std::string("nothing")));
    }
    state_ = next ? next : state_;
}

void Way::take(Event const& event, Finding const& finding) {
    if (circumstances_.log_has_hole) {
        return;
    }
    if (event.kind == Kind::key) {
        press(event.text);
    } else if (event.kind == Kind::state_word) {
        written_.push_back(event.text);
    } else if (is_of_daemon(event)) {
        take_log(event.text, finding);
    }
    for (; !written_.empty() && !entered_.empty(); written_.pop_front(), entered_.pop_front()) {
        if (written_.front() != entered_.front()) {
            finding("the word " + written_.front() + " was written for " + entered_.front());
        }
    }
}

void Way::press(std::string const& key) {
    static std::map<std::string, std::string> const commands{
        {"r", "Run"}, {"n", "NmControlled"}, {"s", "NMControlledPrepareSD"}, {"p", "PrepareSD"}, {"power", "Shutdown"}};
    auto const& command = commands.at(key);
    if (command != last_pressed_) {
        coming_.push_back(command);
    }
    last_pressed_ = command;
}

void Way::take_log(std::string const& text, Finding const& finding) {
    if (auto const command = behind("New command received ", text)) {
        auto const name = word_at(*command, 0);
        if (coming_.empty() || coming_.front() != name) {
            finding("the command " + name + " was taken, not " + (coming_.empty() ? "none" : coming_.front()));
        }
        if (!coming_.empty()) {
            coming_.pop_front();
        }
        if (name == "Shutdown") {
            queue_.clear();
        }
        queue_.push_back(name);
    } else if (auto const ways = behind("AP_StateManger transition from ", text)) {
        auto const separator = ways->find("  to  ");
        auto const to = separator == std::string::npos ? std::nullopt : state_named(ways->substr(separator + 6));
        if (!to || ways->substr(0, separator) != bench::rules::name(state_)) {
            finding("a transition of another state than " + std::string(bench::rules::name(state_)) + ": " + text);
        }
        if (to) {
            go(*to, finding);
        }
    } else if (auto const activity = behind("Ecu state based on NM activity: ", text)) {
        is_asleep_ = activity->rfind("inactive", 0) == 0;
    } else {
        take_notifier(text, finding);
    }
}

void Way::go(State to, Finding const& finding) {
    if (!may_go(to)) {
        finding(std::string("no row leads from ") + bench::rules::name(state_) + " to " + bench::rules::name(to) +
                " with " + (queue_.empty() ? "no command" : queue_.front()) +
                (notifier_.is_running() ? ", clients are asked" : "") + (is_to_prepare_ ? ", to prepare" : ""));
    }
    state_ = to;
    entered_.push_back(k_words[static_cast<unsigned>(to)]);
    if (!queue_.empty()) {
        queue_.pop_front();
    }
}

// Whether something that a cycle may have found leads there; the intention to prepare goes with it.
bool Way::may_go(State to) {
    for (unsigned guess = 0; guess < k_guesses; ++guess) {
        auto now = situation();
        now.found = (guess & 1U) != 0;
        now.sleeps = (guess & 2U) != 0;
        now.ecu = (guess & 4U) != 0;
        now.com = (guess & 8U) != 0;
        now.time_over = (guess & 16U) != 0;
        auto const& row = bench::rules::deciding_row(state_, now);
        if (row.to == to) {
            using bench::rules::Intention;
            is_to_prepare_ = row.intention == Intention::stays ? is_to_prepare_ : row.intention == Intention::begins;
            return true;
        }
    }
    return false;
}

void Way::take_notifier(std::string const& text, Finding const& finding) {
    static std::map<std::string, Group> const groups{
        {"DCM", exploration::dcm}, {"client applications", exploration::applications}, {"DEM", exploration::dem}};
    if (text == "Starting standby sequence") {
        notifier_.request_standby();
        is_asking_ = true;
    } else if (text == "Starting resume sequence") {
        bool const was_running = notifier_.is_running();
        notifier_.request_resume();
        is_asking_ = !was_running;
    } else if (text.rfind("Received ", 0) == 0 &&
               text.find(" client completion notification for ") != std::string::npos) {
        if (!notifier_.asked()) {
            finding("a group has answered that was not asked: " + text);
        } else {
            notifier_.answered();
        }
    } else if (auto const request = behind("Requesting ", text)) {
        auto const place = request->find(" mode for ");
        auto const group = place == std::string::npos ? groups.end() : groups.find(request->substr(place + 10));
        if (group == groups.end()) {
            return;  // of the network
        }
        if (!std::exchange(is_asking_, false)) {
            if (notifier_.asked()) {
                finding("a group is asked while another request waits for its answers: " + text);
            }
            notifier_.check();
        }
        auto const mode = word_at(*request, 0) == "kOn" ? Mode::on : Mode::prepare_sd;
        if (notifier_.asked() != group->second || notifier_.requested_from(group->second) != mode) {
            finding("this group is not next, or not for that: " + text);
        }
    }
}

Situation Way::situation() const {
    Situation now;
    now.head = queue_.empty() ? Command::none : command_named(queue_.front());
    now.nm_usage = circumstances_.nm_usage;
    now.prepares = is_to_prepare_;
    now.asked = notifier_.is_running();
    return now;
}

bool Way::is_held_up() const {
    return circumstances_.log_has_hole || !queue_.empty() || state_ == State::shutting_down;
}

std::string Way::missing_at_rest() {
    if (circumstances_.log_has_hole) {
        return {};
    }
    if (!coming_.empty()) {
        return "the command " + coming_.front() + " was not taken";
    }
    if (!entered_.empty() || !written_.empty()) {
        return entered_.empty() ? "a state for the word " + written_.front() : "the word " + entered_.front();
    }
    auto now = situation();
    now.found = true;
    now.sleeps = is_asleep_;
    now.ecu = holds_.keep_ecu_alive();
    now.com = holds_.keep_com_alive();
    auto const& row = bench::rules::deciding_row(state_, now);
    bool const waits_for_clients = now.asked && (state_ == State::preparing || state_ == State::resuming);
    return row.to == State::stay && !waits_for_clients ? "" : "the transition of " + bench::rules::name(row);
}

void Asking::take(Event const& event, Finding const& finding) {
    if (circumstances_.log_has_hole) {
        return;
    }
    if (event.kind == Kind::client) {
        take_act(event, finding);
    } else if (is_of_daemon(event)) {
        take_log(event, finding);
    }
}

void Asking::take_log(Event const& event, Finding const& finding) {
    auto const& text = event.text;
    if (auto const newcomer = behind("client connected: name = ", text)) {
        auto& client = clients_[word_at(*newcomer, 0)];
        at(client, ++client.server);
    } else if (auto const gone = behind("client disconnected: ", text)) {
        auto& client = clients_[word_at(*gone, 0)];
        at(client, client.server).is_over = true;
    } else if (auto const state = behind("sending state change request to clients. new state = ", text)) {
        send(word_at(*state, 0));
    } else if (auto const request = behind("Requesting ", text)) {
        auto const place = request->find(" mode for ");
        if (place != std::string::npos) {
            group_ = request->substr(place + 10);
            asked_at_ = event.time;
        }
    } else if (text.rfind("Received ", 0) == 0 && text.find(" completion notification for ") != std::string::npos) {
        judge_time(event, finding);
    }
}

void Asking::judge_time(Event const& event, Finding const& finding) {
    auto const limit =
        (group_ == "client applications" ? circumstances_.application_s : circumstances_.diagnosis_s) * k_ns_per_s;
    auto const taken = event.time - asked_at_;
    auto const place = event.text.find("Status: ");
    bool const is_late = place != std::string::npos && word_at(event.text, place + 8) == "1";
    if (asked_at_ != 0 && is_late && taken < limit) {
        finding(group_ + " had " + in_ms(taken) + " only: " + event.text);
    }
    if (asked_at_ != 0 && taken > limit + k_slack + circumstances_.stalled_in(asked_at_, event.time)) {
        finding(group_ + " had " + in_ms(taken) + ": " + event.text);
    }
    asked_at_ = 0;
}

// By the server, to each connection of the group that was requested last.
void Asking::send(std::string const& state) {
    for (auto& [name, client] : clients_) {
        auto const* const group = name == "diag::dcm" ? "DCM" : name == "diag::dem" ? "DEM" : "client applications";
        if (client.server > 0 && group == group_ && !at(client, client.server).is_over) {
            at(client, client.server).sent.push_back(state);
        }
    }
}

// A request with the number 0 comes when the client connects, and nobody waits for its answer.
void Asking::take_act(Event const& event, Finding const& finding) {
    auto const& act = event.act;
    auto& client = clients_[act.who];
    if (act.what == "connected") {
        at(client, ++client.client);
    } else if (act.what == "asked" && act.status != 0) {
        auto& connection = at(client, client.client);
        if (act.status != ++connection.number) {
            finding(event.text + " with the number " + std::to_string(act.status) + ", not " +
                    std::to_string(connection.number));
        }
        connection.received.push_back(act.of);
    }
}

Asking::Connection& Asking::at(Client& client, std::size_t count) {
    client.all.resize(std::max(client.all.size(), count));
    return client.all.at(count - 1);
}

std::string Asking::missing_at_rest() {
    if (circumstances_.log_has_hole) {
        return {};
    }
    for (auto const& [name, client] : clients_) {
        for (auto const& connection : client.all) {
            auto const& sent = connection.sent;
            auto const& received = connection.received;
            bool const is_part =
                received.size() <= sent.size() && std::equal(received.begin(), received.end(), sent.begin());
            bool const is_known = client.client > 0 && client.server > 0;
            if (is_known && (!is_part || (!connection.is_over && sent.size() != received.size()))) {
                return name + " was asked " + std::to_string(received.size()) + " times, not " +
                       std::to_string(sent.size()) + " times, or for other states";
            }
        }
    }
    return asked_at_ == 0 ? "" : "the answers of " + group_;
}

// A resume that turns a suspend back waits for the group that is asked before it begins.
void Budget::take(Event const& event, Finding const& finding) {
    if (event.kind != Kind::state_word) {
        return;
    }
    auto const way = (2 * circumstances_.diagnosis_s + circumstances_.application_s) * k_ns_per_s;
    auto const turn = std::max(circumstances_.diagnosis_s, circumstances_.application_s) * k_ns_per_s;
    auto const taken = event.time - since_;
    auto const budget =
        (word_ == "resuming" ? way + turn : way) + k_slack + circumstances_.stalled_in(since_, event.time);
    if ((word_ == "preparing" || word_ == "resuming") && taken > budget) {
        finding(word_ + " took " + in_ms(taken) + ", longer than " + in_ms(budget));
    }
    word_ = event.text;
    since_ = event.time;
}

// Each cycle is logged and reported. Reports that fail end for good, so that nothing is said after a service manager's
// end.
void Beats::take(Event const& event, Finding const& finding) {
    bool const is_beat = event.kind == Kind::watchdog;
    bool const is_cycle = is_of_daemon(event) && event.text == "Starting AP_StateManager run_cyclic_task";
    if (!is_beat && !is_cycle) {
        return;
    }
    auto const limit = circumstances_.period_ms * k_ns_per_ms + k_slack + circumstances_.stalled_in(last_, event.time);
    if (last_ != 0 && event.time - last_ > limit && circumstances_.is_supervised) {
        finding("no sign of life for " + in_ms(event.time - last_));
    }
    last_ = is_beat || last_ == 0 ? event.time : last_;
}

namespace {

/// Beginnings of warnings and errors, and what explains them; always where nothing stands.
struct Explained {
    char const* begin;
    std::vector<Verb> by;
};

std::vector<Explained> const& explained() {
    static auto const& all = *new std::vector<Explained>{
        {"Could not find ", {}},
        {"Failed to close event file descriptor!", {}},
        {"infrastructure exception", {Verb::withdraw, Verb::kill}},
        {"Client ", {Verb::report}},
        {"client dropped: ", {Verb::behave, Verb::report}},
        {"connection dropped before it introduced itself", {Verb::behave, Verb::report}},
        {"A reply of ", {Verb::kill}},
        {"StateClient::", {Verb::stop, Verb::freeze, Verb::busy, Verb::kill}},
        {"AliveSupervision: caught ", {Verb::kill}},
        {"Stopping AliveSupervision reporting to PHM!", {Verb::kill}},
        {"Application state not reported: ", {Verb::kill}},
    };
    return all;
}

}  // namespace

void Complaints::take(Event const& event, Finding const& finding) {
    if (!is_of_daemon(event) || event.level > k_warning) {
        return;
    }
    bool const is_explained = std::any_of(explained().begin(), explained().end(), [&](Explained const& entry) {
        return event.text.rfind(entry.begin, 0) == 0 &&
               (entry.by.empty() || std::any_of(entry.by.begin(), entry.by.end(), [this](Verb verb) {
                    return circumstances_.happened.count(verb) != 0;
                }));
    });
    if (!is_explained) {
        finding("nothing explains: " + event.text);
    }
}
}  // namespace soak
