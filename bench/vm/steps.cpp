#include "bench/vm/steps.h"

namespace bench::vm {

using tour::Expectation;
using vehicle::Kind;
using vehicle::Machine;

namespace {

Expectation transition(std::string const& from, std::string const& to) {
    return {Kind::log, "AP_StateManger transition from " + from + "  to  " + to};
}

std::function<void(Machine&)> press(std::string const& key) {
    return [key](Machine& machine) { machine.press(key); };
}

void switch_on(Machine& machine) {
    machine.start_daemon();
}
void nothing(Machine& /*machine*/) {}

}  // namespace

std::vector<tour::Step> steps() {
    return {
        {"The machine is switched on", switch_on, {{Kind::state_word, "startingup"}}},
        {"Network management is not used: it runs at once",
         nothing,
         {{Kind::state_word, "running"}, {Kind::notification, "READY"}, {Kind::machine_state, "Running"}}},
        {"The hypervisor asks for a suspend",
         press("p"),
         {transition("Running", "Preparing"), {Kind::state_word, "preparing"}, {Kind::state_word, "prepared4sd"}}},
        {"The hypervisor resumes the machine",
         press("r"),
         {transition("PreparedSD", "Resuming"), {Kind::state_word, "resuming"}, {Kind::state_word, "running"}}},
        {"A second suspend", press("p"), {{Kind::state_word, "preparing"}, {Kind::state_word, "prepared4sd"}}},
        {"Power off while suspended: the fast way",
         press("power"),
         {{Kind::state_word, "shuttingdown"},
          {Kind::log, "Fast shutdown executed"},
          {Kind::power_off, "terminate"},
          {Kind::power_off, "poweroff 60000"},
          {Kind::ended, "power off"}}},
        {"It is switched on again",
         switch_on,
         {{Kind::state_word, "startingup"}, {Kind::state_word, "running"}, {Kind::machine_state, "Running"}}},
        {"Power off while running: the normal way",
         press("power"),
         {{Kind::state_word, "shuttingdown"},
          {Kind::log, "Normal shutdown executed"},
          {Kind::machine_state, "Shutdown"},
          {Kind::ended, "power off"}}},
    };
}

}  // namespace bench::vm
