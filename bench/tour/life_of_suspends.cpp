#include "bench/tour/actions.h"

namespace bench::tour {

using vehicle::Kind;

std::vector<Step> life_of_suspends() {
    return {
        new_life("A second life, nobody needs the network", both(hold_answers(false), others_need_network(false))),
        {"The hypervisor leaves it to the network, to suspend",
         press("s"),
         {transition("Running", "NM Controlled"), word("runnmcontrolled")},
         {"Running 2"}},
        {"The network falls asleep: it suspends",
         nothing(),
         {transition("NM Controlled", "Preparing"), word("preparing"), word("prepared4sd")},
         {"NM Controlled 6"}},
        {"The hypervisor resumes the machine", press("r"), {word("resuming"), word("running")}},
        {"Again, but an application keeps the ECU alive", both(keep_ecu_alive(true), press("s")),
         sleeps_into_post_run()},
        {"The application is content: it suspends",
         keep_ecu_alive(false),
         {transition("Post Run", "Preparing"), word("preparing"), word("prepared4sd")},
         {"Post Run 6"}},
        {"It is resumed again", press("r"), {word("resuming"), word("running")}},
        {"A suspend out of Running",
         press("p"),
         {transition("Running", "Preparing"), word("preparing"), word("prepared4sd")},
         {"Running 3"}},
        {"Power off while suspended: the fast way",
         press("power"),
         {transition("PreparedSD", "Shutting down"),
          word("shuttingdown"),
          {Kind::log, "Fast shutdown executed"},
          {Kind::power_off, "terminate"},
          {Kind::power_off, "poweroff 60000"}},
         {"PreparedSD 2"}},
        {"It cycles on until it is stopped", nothing(), stays(), {"Shutting down 1"}},
        {"The service manager stops it",
         terminate(),
         {{Kind::log, "SIGTERM received!"},
          {Kind::notification, "STOPPING"},
          {Kind::log, "AP_StateManger daemon shutting down"},
          {Kind::ended, "0"}}},
    };
}

}  // namespace bench::tour
