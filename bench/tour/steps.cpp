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

}  // namespace

std::vector<Step> steps() {
    return {
        {"Start the daemon", start, {{Kind::state_word, "startingup"}, {Kind::notification, "READY"}}},
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
          {Kind::power_off, "lookup vyn_per_daemon"}}},
        {"Everybody has stood by", nothing, {transition("Preparing", "PreparedSD"), {Kind::state_word, "prepared4sd"}}},
        {"The hypervisor resumes the machine",
         press("r"),
         {transition("PreparedSD", "Resuming"), {Kind::state_word, "resuming"}}},
        {"Everybody has resumed",
         nothing,
         {transition("Resuming", "Running"), {Kind::state_word, "running"}, {Kind::machine_state, "Running"}}},
        {"A second suspend",
         press("p"),
         {{Kind::state_word, "preparing"}, transition("Preparing", "PreparedSD"), {Kind::state_word, "prepared4sd"}}},
        {"Power off while suspended: the fast way",
         press("power"),
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
        {"A second life", start, {{Kind::state_word, "startingup"}, transition("Starting up", "Running")}},
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

}  // namespace bench::tour
