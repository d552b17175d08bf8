#include "bench/tour/actions.h"

#include <csignal>

namespace bench::tour {

using vehicle::Kind;
using vehicle::Machine;

Action nothing() {
    return [](Machine& /*machine*/) {};
}

Action start() {
    return [](Machine& machine) { machine.start_daemon(); };
}

Action terminate() {
    return [](Machine& machine) { machine.signal_daemon(SIGTERM); };
}

Action press(std::string const& key) {
    return [key](Machine& machine) { machine.press(key); };
}

Action tell(std::string const& neighbour, nlohmann::json const& command) {
    return [neighbour, command](Machine& machine) { machine.tell(neighbour, command); };
}

Action both(Action first, Action second) {
    return [first = std::move(first), second = std::move(second)](Machine& machine) {
        first(machine);
        second(machine);
    };
}

Action others_need_network(bool needed) {
    return tell("other node", {{"do", needed ? "request" : "release"}, {"bits", "80"}});
}

Action keep_ecu_alive(bool kept) {
    return tell("application 2", {{"do", kept ? "request" : "release"}, {"what", "ecu_alive"}});
}

Action behave(std::string const& client, std::string const& manner) {
    return tell(client, {{"do", "behave"}, {"as", manner}});
}

Action hold_answers(bool held) {
    return behave("diag::dcm", held ? "silent" : "well");
}

Action change(nlohmann::json const& settings) {
    return [settings](Machine& machine) { machine.change_configuration({{"ap_statemanager", settings}}); };
}

Expectation requested(std::string const& application, std::string const& what) {
    return {Kind::application, "", false, {{application, "requests", what}}};
}

Expectation seen(vehicle::Act const& act) {
    return {Kind::client, "", false, act};
}

Expectation asked(std::string const& client, std::string const& state) {
    return seen({client, "asked", state});
}

Expectation outcome(std::string const& client, std::string const& how) {
    return {Kind::log, "State notification client [ " + client + " ] " + how};
}

Expectation transition(std::string const& from, std::string const& to) {
    return {Kind::log, "AP_StateManger transition from " + from + "  to  " + to};
}

Expectation word(std::string const& text) {
    return {Kind::state_word, text};
}

std::vector<Expectation> stays() {
    Expectation const beat{Kind::watchdog, "WATCHDOG"};
    return {beat, beat, beat, {Kind::state_word, "", true}};
}

Step new_life(std::string const& name, Action const& before) {
    Step step;
    step.name = name;
    step.action = both(before, start());
    step.expectations = {word("startingup"), transition("Starting up", "Running"), word("running")};
    step.begins_life = true;
    return step;
}

std::vector<Expectation> sleeps_into_post_run() {
    return {transition("Running", "NM Controlled"),
            word("runnmcontrolled"),
            {Kind::bus, "bus sleep"},
            {Kind::log, "Ecu state based on NM activity: inactive (sleep mode)"},
            transition("NM Controlled", "Post Run"),
            word("postrun")};
}

std::vector<Expectation> shuts_down_from(std::string const& state) {
    return {transition(state, "Shutting down"),      word("shuttingdown"),
            {Kind::log, "Normal shutdown executed"}, {Kind::machine_state, "Shutdown"},
            {Kind::notification, "STOPPING"},        {Kind::ended, "0"}};
}

}  // namespace bench::tour
