#include "player.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace soak {
namespace {

// Steps of each kind that the soak draws, so that it can still be played.
constexpr char const* k_script = R"(set StateManagerMainPeriod 20
set ApplicationSuspendRequestTimeout 1
set DMSuspendRequestTimeout 1
    0  application 1 requests ecu_alive
    0  application 2 requests com_alive 0080 9
   50  client radio is late 100
    0  key p
   30  stop daemon for 200
   20  key r
    0  settle
)";

TEST(Soak, Holds_for_a_short_life) {
    std::ifstream example(SOAK_PROJECT "/deploy/config/ap_statemanager.json");
    Player player(parsed(k_script), SOAK_BUILD, {std::istreambuf_iterator<char>(example), {}});
    for (auto const& finding : player.play()) {
        ADD_FAILURE() << finding;
    }
    EXPECT_EQ(player.lives(), 1U);
}

}  // namespace
}  // namespace soak
