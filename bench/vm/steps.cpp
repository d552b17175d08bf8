#include "bench/vm/steps.h"

#include "bench/tour/actions.h"

#include <chrono>

namespace bench::vm {

using tour::asked;
using tour::Expectation;
using tour::keep_ecu_alive;
using tour::nothing;
using tour::others_need_network;
using tour::press;
using tour::requested;
using tour::start;
using tour::Step;
using tour::transition;
using tour::word;
using vehicle::Kind;
using vehicle::Machine;

namespace {

// The machine has to be given time to do what it must not do.
void look_on(Machine& machine) {
    machine.watch(std::chrono::seconds(2));
}

Expectation no_other_state() {
    return {Kind::state_word, "", true};
}

std::vector<Step> begin() {
    return {
        {"The machine is switched on", start(), {word("startingup"), {Kind::notification, "READY"}}, {}, true},
        {"It finds its network manager, and runs",
         nothing(),
         {transition("Starting up", "Running"), word("running"), {Kind::machine_state, "Running"}}},
    };
}

std::vector<Step> network() {
    return {
        {"The rest of the vehicle needs the network",
         others_need_network(true),
         {{Kind::network_state, "80 00 01 00 00 00"}}},
        {"An application keeps the ECU alive", keep_ecu_alive(true), {requested("2", "ecu_alive")}},
        {"The hypervisor leaves it to the network, to suspend",
         press("s"),
         {transition("Running", "NM Controlled"), word("runnmcontrolled"), {Kind::network_state, "80 00 00 00 00 00"}}},
        {"The others keep it awake", look_on, {no_other_state()}},
        {"The network falls asleep: Post Run",
         others_need_network(false),
         {{Kind::bus, "bus sleep"}, transition("NM Controlled", "Post Run"), word("postrun")}},
        {"It stays for the application", look_on, {no_other_state()}},
        {"The application is content: it suspends",
         keep_ecu_alive(false),
         {transition("Post Run", "Preparing"), word("preparing"), asked("diag::dcm", "kPrepSD"),
          asked("radio", "kPrepSD"), asked("diag::dem", "kPrepSD"), word("prepared4sd")}},
        {"The hypervisor resumes the machine",
         press("r"),
         {transition("PreparedSD", "Resuming"), word("resuming"), asked("diag::dem", "kOn"), asked("radio", "kOn"),
          asked("diag::dcm", "kOn"), word("running")}},
    };
}

std::vector<Step> ends() {
    return {
        {"The hypervisor asks for a suspend",
         press("p"),
         {transition("Running", "Preparing"), word("preparing"), word("prepared4sd")}},
        {"Power off while suspended: the fast way",
         press("power"),
         {word("shuttingdown"),
          {Kind::log, "Fast shutdown executed"},
          {Kind::power_off, "terminate"},
          {Kind::power_off, "poweroff 60000"},
          {Kind::ended, "power off"}}},
        {"It is switched on again",
         start(),
         {word("startingup"), word("running"), {Kind::machine_state, "Running"}},
         {},
         true},
        {"Power off while running: the normal way",
         press("power"),
         {word("shuttingdown"),
          {Kind::log, "Normal shutdown executed"},
          {Kind::machine_state, "Shutdown"},
          {Kind::ended, "power off"}}},
    };
}

}  // namespace

std::vector<Step> steps() {
    std::vector<Step> way;
    for (auto const& part : {begin(), network(), ends()}) {
        way.insert(way.end(), part.begin(), part.end());
    }
    return way;
}

}  // namespace bench::vm
