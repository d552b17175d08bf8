#include "bench/tour/actions.h"

namespace bench::tour {

using vehicle::Kind;

namespace {

Step first_start() {
    auto start = new_life(
        "A life without network management, which nobody waits for",
        change(
            {{"StateManagerNMUsage", false}, {"ApplicationSuspendRequestTimeout", 3}, {"DMSuspendRequestTimeout", 3}}));
    start.rows = {"Starting up 1"};
    return start;
}

std::vector<Step> life_of_a_radio() {
    return {
        first_start(),
        {"The clients have connected",
         nothing(),
         {seen({"diag::dcm", "connected", "kOn"}), seen({"navigation", "connected", "kOn"}),
          seen({"radio", "connected", "kOn"}), seen({"diag::dem", "connected", "kOn"})}},
        {"A suspend: diagnostics are asked first",
         press("p"),
         {transition("Running", "Preparing"),
          word("preparing"),
          {Kind::power_off, "lookup vyn_per_daemon"},
          asked("diag::dcm", "kPrepSD")}},
        {"Applications and the event manager are next",
         nothing(),
         {asked("navigation", "kPrepSD"), asked("radio", "kPrepSD"), asked("diag::dem", "kPrepSD"),
          outcome("diag::dcm", "succeeded"), outcome("navigation", "succeeded"), outcome("radio", "succeeded"),
          outcome("diag::dem", "succeeded")}},
        {"All have stood by", nothing(), {transition("Preparing", "PreparedSD"), word("prepared4sd")}},
        {"A resume: the event manager is asked first",
         press("r"),
         {transition("PreparedSD", "Resuming"), word("resuming"), asked("diag::dem", "kOn")}},
        {"Everybody has resumed, in the opposite order",
         nothing(),
         {asked("radio", "kOn"),
          asked("diag::dcm", "kOn"),
          transition("Resuming", "Running"),
          word("running"),
          {Kind::machine_state, "Running"}}},
        {"A suspend in which the radio does not answer",
         both(behave("radio", "silent"), press("p")),
         {transition("Running", "Preparing"), word("preparing"), asked("radio", "kPrepSD")}},
        {"A resume in the middle of it", press("r"), {transition("Preparing", "Resuming"), word("resuming")}},
        {"It turns back once the radio answers",
         behave("radio", "well"),
         {seen({"radio", "answered", "kPrepSD"}), asked("radio", "kOn"), asked("diag::dcm", "kOn"),
          transition("Resuming", "Running"), word("running")}},
        {"A suspend with a radio that never answers",
         both(behave("radio", "silent"), press("p")),
         {word("preparing"), asked("radio", "kPrepSD"), outcome("radio", "timed out")}},
        {"The machine has gone on without it",
         nothing(),
         {asked("diag::dem", "kPrepSD"), transition("Preparing", "PreparedSD"), word("prepared4sd")}},
        {"Power off ends this life",
         both(behave("radio", "well"), press("power")),
         {transition("PreparedSD", "Shutting down"), word("shuttingdown"), {Kind::power_off, "terminate"}}},
        {"It is stopped", terminate(), {{Kind::notification, "STOPPING"}, {Kind::ended, "0"}}},
    };
}

Step second_start() {
    auto start = new_life("Another life: clients that stood by are asked to run");
    start.expectations.push_back(seen({"diag::dem", "connected", "kPrepSD"}));
    start.expectations.push_back(seen({"diag::dem", "answered", "kOn"}));
    return start;
}

std::vector<Step> life_of_a_navigation() {
    return {
        second_start(),
        {"A suspend with a navigation that fails",
         both(behave("navigation", "failing"), press("p")),
         {transition("Running", "Preparing"), outcome("navigation", "general error"),
          transition("Preparing", "PreparedSD"), word("prepared4sd")}},
        {"A resume for which the event manager takes its time",
         both(behave("diag::dem", "silent"), press("r")),
         {transition("PreparedSD", "Resuming"), word("resuming"), asked("diag::dem", "kOn")}},
        {"Power off before it has answered", press("power"), shuts_down_from("Resuming")},
    };
}

std::vector<Step> last_life() {
    auto ignores = stays();
    ignores.push_back({Kind::log, "New command received NmControlled"});
    return {new_life("The last life", behave("diag::dem", "well")),
            {"It can't be left to a network that it does not use", press("n"), ignores, {"Running 5"}},
            {"The service manager ends the last life", terminate(), {{Kind::ended, "0"}}}};
}

}  // namespace

// Network management is not used, and clients have three seconds for their answers.
std::vector<Step> lives_with_clients() {
    std::vector<Step> lives;
    for (auto const& life : {life_of_a_radio(), life_of_a_navigation(), last_life()}) {
        lives.insert(lives.end(), life.begin(), life.end());
    }
    return lives;
}

}  // namespace bench::tour
