#include "lives.h"

#include "bench/tour/actions.h"

namespace faults {

namespace {

using bench::tour::keep_ecu_alive;
using bench::tour::others_need_network;
using bench::tour::press;
using bench::tour::tell;
using bench::tour::terminate;
using bench::vehicle::Kind;

constexpr char const* k_clients[] = {"diag::dcm", "navigation", "radio", "diag::dem"};

/// A word of the hypervisor, and the log's line of the state that writes it.
Expected word(std::string const& text, std::string const& from, std::string const& to) {
    return {Kind::state_word, text, "AP_StateManger transition from " + from + "  to  " + to};
}

std::vector<Expected> with(std::vector<Expected> all, std::vector<Expected> const& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

std::vector<Expected> of_each_client(std::string const& what) {
    std::vector<Expected> all;
    for (auto const* client : k_clients) {
        all.push_back({Kind::client, std::string(client) + ' ' + what});
    }
    return all;
}

// Whom the daemon has heard of: a client that has introduced itself may still wait for that.
Step start(std::vector<Expected> const& more = {}) {
    std::vector<Expected> usual{
        {Kind::state_word, "startingup", "AP_StateManger transition from Starting up  to  Running"},
        word("running", "Starting up", "Running"),
        {Kind::notification, "READY"},
        {Kind::machine_state, "Running"},
        {Kind::watchdog, "WATCHDOG"}};
    for (auto const* client : k_clients) {
        usual.push_back({Kind::log, std::string("client connected: name =  ") + client});
    }
    return {"start", bench::tour::start(), with(usual, more)};
}

Step suspend(std::string const& from, std::function<void(bench::vehicle::Machine&)> action) {
    return {"suspend", std::move(action),
            with({word("preparing", from, "Preparing"), word("prepared4sd", "Preparing", "PreparedSD")},
                 of_each_client("answered kPrepSD 0"))};
}

Step resume() {
    return {"resume", press("r"),
            with({word("resuming", "PreparedSD", "Resuming"), word("running", "Resuming", "Running")},
                 of_each_client("answered kOn 0"))};
}

Step health() {
    return {"health", bench::tour::nothing(), {}, true};
}

Step stop() {
    return {"stop",
            terminate(),
            {{Kind::notification, "STOPPING"}, {Kind::log, "AP_StateManger daemon shutting down"}, {Kind::ended, "0"}}};
}

Step normal_shutdown(std::string const& from) {
    return {"normal shutdown",
            press("power"),
            {word("shuttingdown", from, "Shutting down"),
             {Kind::machine_state, "Shutdown"},
             {Kind::log, "Normal shutdown executed"},
             {Kind::notification, "STOPPING"},
             {Kind::log, "AP_StateManger daemon shutting down"},
             {Kind::ended, "0"}}};
}

// A client whose request or answer was lost is waited for to the end of its time.
nlohmann::json quick() {
    return {{"StateManagerMainPeriod", 20}, {"ApplicationSuspendRequestTimeout", 3}, {"DMSuspendRequestTimeout", 3}};
}

// The states hold the network by the bit by which applications keep the ECU alive, so that the network sleeps although
// one of them does.
nlohmann::json with_network() {
    auto settings = quick();
    settings["StateManagerNMUsage"] = true;
    settings["DefautNMRequestPattern"] = {0, 0, 1, 0, 0, 0};
    settings["NmUserDataConfig"]["CabBitsEnabled"] = true;
    settings["KnockOutTimer"] = 600;
    return settings;
}

std::vector<Expected> network_is_held() {
    return {{Kind::user_data, "80 00 00 00 00 00"}, {Kind::network_state, "00 00 01 00 00 00"}};
}

Life plain() {
    return {"plain",
            false,
            quick(),
            {"startingup", "running", "preparing", "prepared4sd", "resuming", "running"},
            {start(), suspend("Running", press("p")), resume(), health(), stop()}};
}

nlohmann::json com_alive(char const* verb) {
    nlohmann::json command{{"do", verb}, {"what", "com_alive"}, {"bits", "00 01"}};
    if (command["do"] == "request") {
        command["ac"] = 1;
    }
    return command;
}

Life requests() {
    return {"requests",
            true,
            with_network(),
            {"startingup", "running", "runnmcontrolled", "running"},
            {start(network_is_held()),
             {"an application wakes the car",
              tell("application 1", {{"do", "request"}, {"what", "cwu"}, {"ac", 3}}),
              {{Kind::user_data, "c0 04 00 00 00 00"}}},
             {"it is done",
              tell("application 1", {{"do", "release"}, {"what", "cwu"}}),
              {{Kind::user_data, "80 00 00 00 00 00"}}},
             {"it needs communication",
              tell("application 1", com_alive("request")),
              {{Kind::network_state, "00 01 01 00 00 00"}, {Kind::user_data, "80 01 00 00 01 00"}}},
             {"it has said everything",
              tell("application 1", com_alive("release")),
              {{Kind::network_state, "00 00 01 00 00 00"}, {Kind::user_data, "80 00 00 00 00 00"}}},
             {"others need the network", others_need_network(true), {{Kind::network_state, "80 00 01 00 00 00"}}},
             {"left to the network",
              press("n"),
              {word("runnmcontrolled", "Running", "NM Controlled"), {Kind::network_state, "80 00 00 00 00 00"}}},
             {"runs again",
              press("r"),
              {word("running", "NM Controlled", "Running"), {Kind::network_state, "80 00 01 00 00 00"}}},
             health(),
             stop()}};
}

Life post_run() {
    return {"post run",
            true,
            with_network(),
            {"startingup", "running", "runnmcontrolled", "postrun", "preparing", "prepared4sd", "resuming", "running",
             "shuttingdown"},
            {start(network_is_held()),
             {"an application keeps the ECU alive", keep_ecu_alive(true), {}},
             {"left to the network, to suspend",
              press("s"),
              {word("runnmcontrolled", "Running", "NM Controlled"),
               {Kind::bus, "bus sleep"},
               word("postrun", "NM Controlled", "Post Run")}},
             suspend("Post Run", keep_ecu_alive(false)),
             resume(),
             health(),
             normal_shutdown("Running")}};
}

Life fast_shutdown() {
    return {"fast shutdown",
            false,
            quick(),
            {"startingup", "running", "preparing", "prepared4sd", "shuttingdown"},
            {start(),
             suspend("Running", press("p")),
             health(),
             {"power off",
              press("power"),
              {word("shuttingdown", "PreparedSD", "Shutting down"),
               {Kind::power_off, "terminate"},
               {Kind::power_off, "poweroff 60000"},
               {Kind::log, "Fast shutdown executed"}}},
             stop()}};
}

}  // namespace

std::vector<Life> const& lives() {
    static std::vector<Life> const all{plain(), requests(), post_run(), fast_shutdown()};
    return all;
}

}  // namespace faults
