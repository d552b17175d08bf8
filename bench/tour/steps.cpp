#include "bench/tour/tour.h"

#include <csignal>

namespace bench::tour {

using vehicle::Kind;
using vehicle::Machine;

namespace {

Expectation transition(std::string const& from, std::string const& to) {
    return {Kind::log, "AP_StateManger transition from " + from + "  to  " + to};
}

std::function<void(Machine&)> press(std::string const& key) {
    return [key](Machine& machine) { machine.press(key); };
}

void start(Machine& machine) {
    machine.start_daemon();
}
void nothing(Machine& /*machine*/) {}
void terminate(Machine& machine) {
    machine.signal_daemon(SIGTERM);
}

std::function<void(Machine&)> behave(std::string const& client, std::string const& manner) {
    return [client, manner](Machine& machine) { machine.tell(client, {{"do", "behave"}, {"as", manner}}); };
}

std::function<void(Machine&)> both(std::function<void(Machine&)> const& first,
                                   std::function<void(Machine&)> const& second) {
    return [first, second](Machine& machine) {
        first(machine);
        second(machine);
    };
}

Expectation asked(std::string const& client, std::string const& state) {
    return {Kind::client, client + " asked " + state};
}

/// What the log says of a client's answer.
Expectation outcome(std::string const& client, std::string const& how) {
    return {Kind::log, "State notification client [ " + client + " ] " + how};
}

std::vector<Step> first_life() {
    return {
        {"Start the daemon", start, {{Kind::state_word, "startingup"}, {Kind::notification, "READY"}}},
        {"The clients have connected",
         nothing,
         {{Kind::client, "diag::dcm connected kOn"},
          {Kind::client, "navigation connected kOn"},
          {Kind::client, "radio connected kOn"},
          {Kind::client, "diag::dem connected kOn"}}},
        {"Network management is not used: it runs at once",
         nothing,
         {transition("Starting up", "Running"),
          {Kind::state_word, "running"},
          {Kind::machine_state, "Running"},
          {Kind::watchdog, "WATCHDOG"}}},
        {"The hypervisor asks for a suspend",
         press("p"),
         {transition("Running", "Preparing"),
          {Kind::state_word, "preparing"},
          {Kind::power_off, "lookup vyn_per_daemon"},
          asked("diag::dcm", "kPrepSD")}},
        {"Applications and the event manager are next",
         nothing,
         {asked("navigation", "kPrepSD"), asked("radio", "kPrepSD"), asked("diag::dem", "kPrepSD"),
          outcome("diag::dcm", "succeeded"), outcome("navigation", "succeeded"), outcome("radio", "succeeded"),
          outcome("diag::dem", "succeeded")}},
        {"Everybody has stood by", nothing, {transition("Preparing", "PreparedSD"), {Kind::state_word, "prepared4sd"}}},
        {"The hypervisor resumes the machine",
         press("r"),
         {transition("PreparedSD", "Resuming"), {Kind::state_word, "resuming"}, asked("diag::dem", "kOn")}},
        {"Everybody has resumed, in the opposite order",
         nothing,
         {asked("radio", "kOn"),
          asked("diag::dcm", "kOn"),
          transition("Resuming", "Running"),
          {Kind::state_word, "running"},
          {Kind::machine_state, "Running"}}},
        {"A suspend in which the radio does not answer",
         both(behave("radio", "silent"), press("p")),
         {transition("Running", "Preparing"), {Kind::state_word, "preparing"}, asked("radio", "kPrepSD")}},
        {"A resume in the middle of it",
         press("r"),
         {transition("Preparing", "Resuming"), {Kind::state_word, "resuming"}}},
        {"It turns back once the radio answers",
         behave("radio", "well"),
         {{Kind::client, "radio answered kPrepSD 0"},
          asked("radio", "kOn"),
          asked("diag::dcm", "kOn"),
          transition("Resuming", "Running"),
          {Kind::state_word, "running"}}},
        {"A suspend with a radio that never answers",
         both(behave("radio", "silent"), press("p")),
         {{Kind::state_word, "preparing"}, asked("radio", "kPrepSD"), outcome("radio", "timed out")}},
        {"The machine has gone on without it",
         nothing,
         {asked("diag::dem", "kPrepSD"), transition("Preparing", "PreparedSD"), {Kind::state_word, "prepared4sd"}}},
        {"Power off while suspended: the fast way",
         both(behave("radio", "well"), press("power")),
         {transition("PreparedSD", "Shutting down"),
          {Kind::state_word, "shuttingdown"},
          {Kind::log, "Fast shutdown executed"},
          {Kind::power_off, "terminate"},
          {Kind::power_off, "poweroff 60000"}}},
        {"It cycles on until it is stopped", nothing, {{Kind::watchdog, "WATCHDOG"}}},
        {"The service manager stops it",
         terminate,
         {{Kind::log, "SIGTERM received!"},
          {Kind::notification, "STOPPING"},
          {Kind::log, "AP_StateManger daemon shutting down"},
          {Kind::ended, "0"}}},
    };
}

std::vector<Step> second_life() {
    return {
        {"A second life: clients that stood by are asked to run",
         start,
         {{Kind::state_word, "startingup"},
          transition("Starting up", "Running"),
          {Kind::state_word, "running"},
          {Kind::client, "diag::dem connected kPrepSD"},
          {Kind::client, "diag::dem answered kOn 0"}}},
        {"A suspend with a navigation that fails",
         both(behave("navigation", "failing"), press("p")),
         {transition("Running", "Preparing"),
          outcome("navigation", "general error"),
          transition("Preparing", "PreparedSD"),
          {Kind::state_word, "prepared4sd"}}},
        {"A resume for which the event manager takes its time",
         both(behave("diag::dem", "silent"), press("r")),
         {transition("PreparedSD", "Resuming"), {Kind::state_word, "resuming"}, asked("diag::dem", "kOn")}},
        {"Power off while resuming: the normal way",
         press("power"),
         {transition("Resuming", "Shutting down"),
          {Kind::state_word, "shuttingdown"},
          {Kind::log, "Normal shutdown executed"},
          {Kind::machine_state, "Shutdown"},
          {Kind::notification, "STOPPING"},
          {Kind::ended, "0"}}},
    };
}

std::vector<Step> third_life() {
    return {
        {"A third life",
         both(behave("diag::dem", "well"), start),
         {{Kind::state_word, "startingup"}, transition("Starting up", "Running")}},
        {"Power off while running: the normal way",
         press("power"),
         {transition("Running", "Shutting down"),
          {Kind::state_word, "shuttingdown"},
          {Kind::log, "Normal shutdown executed"},
          {Kind::machine_state, "Shutdown"},
          {Kind::notification, "STOPPING"},
          {Kind::ended, "0"}}},
    };
}

}  // namespace

std::vector<Step> steps() {
    auto all = first_life();
    for (auto const& life : {second_life(), third_life()}) {
        all.insert(all.end(), life.begin(), life.end());
    }
    return all;
}

}  // namespace bench::tour
