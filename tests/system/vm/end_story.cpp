#include "target.h"

namespace bench::vm {
namespace {

class End_of_life : public Target {};

TEST_F(End_of_life, Switches_the_machine_off_within_the_budget_of_a_fast_shutdown) {
    machine().press("p");
    ASSERT_TRUE(shows("prepared4sd"));
    auto const begin = std::chrono::steady_clock::now();
    machine().press("power");
    ASSERT_TRUE(shows("shuttingdown"));
    ASSERT_TRUE(sees(Kind::power_off, "poweroff 60000"));
    ASSERT_TRUE(machine().await_power_off(k_patience));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60'000));
    EXPECT_TRUE(logs("Fast shutdown executed"));
}

TEST_F(End_of_life, Switches_the_machine_off_by_a_normal_shutdown) {
    machine().press("power");
    ASSERT_TRUE(shows("shuttingdown"));
    ASSERT_TRUE(machine().await_power_off(k_patience));
    EXPECT_TRUE(sees(Kind::machine_state, "Shutdown"));
    EXPECT_TRUE(logs("Normal shutdown executed"));
}

}  // namespace
}  // namespace bench::vm
