#include "bench/tour/actions.h"

namespace bench::tour {

namespace {

std::vector<Step> network_asleep() {
    auto ends_by_itself = shuts_down_from("NM Controlled");
    ends_by_itself.insert(ends_by_itself.begin(), word("runnmcontrolled"));
    return {
        new_life("A third life"),
        {"Nobody needs the network or the ECU: it shuts down", press("n"), ends_by_itself, {"NM Controlled 4"}},
        new_life("A fourth life"),
        {"An application keeps the ECU alive after the network", both(keep_ecu_alive(true), press("n")),
         sleeps_into_post_run()},
        {"For too long: it shuts down", nothing(), shuts_down_from("Post Run"), {"Post Run 3"}},
    };
}

std::vector<Step> power_off_everywhere() {
    return {
        new_life("A fifth life, the others need the network", others_need_network(true)),
        {"Left to the network", press("n"), {word("runnmcontrolled")}},
        {"Power off while network management decides",
         press("power"),
         shuts_down_from("NM Controlled"),
         {"NM Controlled 3"}},
        new_life("A sixth life, the others sleep", others_need_network(false)),
        {"To Post Run", both(keep_ecu_alive(true), press("n")), sleeps_into_post_run()},
        {"Power off in Post Run", press("power"), shuts_down_from("Post Run"), {"Post Run 2"}},
        new_life("A seventh life"),
        {"Power off while running", press("power"), shuts_down_from("Running"), {"Running 4"}},
    };
}

}  // namespace

std::vector<Step> lives_that_end_soon() {
    std::vector<Step> lives;
    for (auto const& life : {network_asleep(), power_off_everywhere()}) {
        lives.insert(lives.end(), life.begin(), life.end());
    }
    return lives;
}

}  // namespace bench::tour
