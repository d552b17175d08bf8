// The tour's life with network management, a part a function, in the order in which they are walked; each step says
// what is done, what must be seen, and which rows of the states' tables it reaches.

#include "bench/tour/actions.h"

namespace bench::tour {

using vehicle::Kind;

namespace {

std::vector<Step> start_and_run() {
    return {
        {"Start the daemon; the network manager is not there",
         both(tell("node", {{"do", "withdraw"}}), start()),
         {word("startingup"),
          {Kind::notification, "READY"},
          {Kind::log, "Transition form startup to running not possible. Waiting for nm interface."}},
         {},
         true},
        {"It waits for the network manager", nothing(), stays(), {"Starting up 3"}},
        {"The network manager comes",
         tell("node", {{"do", "offer"}}),
         {{Kind::user_data, "80 00 00 00 00 00"},
          transition("Starting up", "Running"),
          word("running"),
          {Kind::network_state, "00 00 01 00 00 00"},
          {Kind::machine_state, "Running"}},
         {"Starting up 2"}},
        {"It runs", nothing(), stays(), {"Running 5"}},
        {"An application wakes the car",
         tell("application 1", {{"do", "request"}, {"what", "cwu"}, {"ac", 3}}),
         {{Kind::user_data, "c0 04 00 00 00 00"}}},
        {"The application is done",
         tell("application 1", {{"do", "release"}, {"what", "cwu"}}),
         {{Kind::user_data, "80 00 00 00 00 00"}}},
    };
}

std::vector<Step> leave_it_to_the_network() {
    return {
        {"The rest of the vehicle needs the network",
         others_need_network(true),
         {{Kind::network_state, "80 00 01 00 00 00"}}},
        {"The hypervisor leaves it to the network",
         press("n"),
         {transition("Running", "NM Controlled"), word("runnmcontrolled"), {Kind::network_state, "80 00 00 00 00 00"}},
         {"Running 1"}},
        {"The others keep it awake", nothing(), stays(), {"NM Controlled 7"}},
        {"The hypervisor lets it run again",
         press("r"),
         {transition("NM Controlled", "Running"), word("running"), {Kind::network_state, "80 00 01 00 00 00"}},
         {"NM Controlled 1"}},
        {"An application keeps the ECU alive", keep_ecu_alive(true), {requested("2", "ecu_alive")}},
        {"Nobody needs the network any more",
         both(others_need_network(false), press("n")),
         sleeps_into_post_run(),
         {"NM Controlled 2"}},
    };
}

std::vector<Step> post_run() {
    auto tick = stays();
    tick.push_back({Kind::log, "Post rumn tick action"});
    return {
        {"It stays for the application, and counts down", nothing(), tick, {"Post Run 7"}},
        {"An application needs communication",
         tell("application 1", {{"do", "request"}, {"what", "com_alive"}, {"bits", "00 01"}, {"ac", 1}}),
         {{Kind::network_state, "00 01 00 00 00 00"},
          {Kind::user_data, "80 01 00 00 01 00"},
          transition("Post Run", "NM Controlled"),
          word("runnmcontrolled")},
         {"Post Run 1"}},
        {"It has said everything",
         tell("application 1", {{"do", "release"}, {"what", "com_alive"}, {"bits", "00 01"}}),
         {{Kind::user_data, "80 00 00 00 00 00"}, transition("NM Controlled", "Post Run"), word("postrun")}},
        {"The hypervisor lets it run",
         press("r"),
         {transition("Post Run", "Running"), word("running")},
         {"Post Run 4"}},
    };
}

std::vector<Step> suspend_and_resume() {
    return {
        {"To Post Run once more", press("n"), sleeps_into_post_run()},
        {"The hypervisor asks for a suspend",
         both(hold_answers(true), press("p")),
         {transition("Post Run", "Preparing"),
          word("preparing"),
          {Kind::user_data, "00 00 00 00 00 00"},
          {Kind::power_off, "lookup vyn_per_daemon"},
          asked("diag::dcm", "kPrepSD")},
         {"Post Run 5"}},
        {"It waits for a client", nothing(), stays(), {"Preparing 2"}},
        {"The client has stood by",
         hold_answers(false),
         {transition("Preparing", "PreparedSD"), word("prepared4sd")},
         {"Preparing 3"}},
        {"It is suspended", nothing(), stays(), {"PreparedSD 3"}},
        {"The hypervisor resumes it",
         both(hold_answers(true), press("r")),
         {transition("PreparedSD", "Resuming"), word("resuming"), {Kind::network_state, "00 00 01 00 00 00"}},
         {"PreparedSD 1"}},
        {"It waits for the client again", nothing(), stays(), {"Resuming 2"}},
        {"The client has resumed",
         hold_answers(false),
         {transition("Resuming", "Running"), word("running"), {Kind::machine_state, "Running"}},
         {"Resuming 3"}},
    };
}

std::vector<Step> change_of_mind() {
    return {
        {"The others need the network; left to it once more",
         both(others_need_network(true), press("n")),
         {transition("Running", "NM Controlled"), word("runnmcontrolled")}},
        {"A suspend out of NM Controlled",
         both(hold_answers(true), press("p")),
         {transition("NM Controlled", "Preparing"), word("preparing")},
         {"NM Controlled 5"}},
        {"The hypervisor wants it back before the client has stood by",
         press("r"),
         {transition("Preparing", "Resuming"), word("resuming")},
         {"Preparing 1"}},
        {"Power off while resuming", press("power"), shuts_down_from("Resuming"), {"Resuming 1"}},
    };
}

}  // namespace

std::vector<Step> life_with_the_network() {
    std::vector<Step> life;
    for (auto const& part :
         {start_and_run(), leave_it_to_the_network(), post_run(), suspend_and_resume(), change_of_mind()}) {
        life.insert(life.end(), part.begin(), part.end());
    }
    return life;
}

}  // namespace bench::tour
