#include "way.h"

#include "words.h"

#include <map>
#include <optional>
#include <utility>

namespace soak {

namespace {

using bench::rules::Command;
using bench::rules::State;
using exploration::Group;
using exploration::Mode;

constexpr unsigned k_guesses = 1U << 5U;  // of what a cycle found of network, applications and time

}  // namespace

void Way::hear(Event const& event, Finding const& finding) {
    if (circumstances_.log_has_hole) {
        return;
    }
    if (event.kind == Kind::key) {
        press(event.text);
    } else if (event.kind == Kind::state_word) {
        written_.push_back(event.text);
    } else if (is_of_daemon(event)) {
        hear_log(event.text, finding);
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

void Way::hear_log(std::string const& text, Finding const& finding) {
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
        hear_notifier(text, finding);
    }
}

void Way::go(State to, Finding const& finding) {
    if (!may_go(to)) {
        finding(std::string("no row leads from ") + bench::rules::name(state_) + " to " + bench::rules::name(to) +
                " with " + (queue_.empty() ? "no command" : queue_.front()) +
                (notifier_.is_running() ? ", clients are asked" : "") + (is_to_prepare_ ? ", to prepare" : ""));
    }
    state_ = to;
    entered_.push_back(word_of(to));
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

void Way::hear_notifier(std::string const& text, Finding const& finding) {
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

}  // namespace soak
