#include "frozen_machine.h"

namespace bench::vehicle {
namespace {

class Frozen : public Frozen_machine {};

TEST_P(Frozen, Machine_loses_nothing) {
    start();
    suspend_and_resume();
    expect_nothing_lost();
}

constexpr std::chrono::milliseconds k_longer_than_a_hiccup{700};

INSTANTIATE_TEST_SUITE_P(Shortly, Frozen,
                         testing::Values(Freeze{Place::running, k_longer_than_a_hiccup},
                                         Freeze{Place::preparing, k_longer_than_a_hiccup},
                                         Freeze{Place::prepared, k_longer_than_a_hiccup},
                                         Freeze{Place::resuming, k_longer_than_a_hiccup}),
                         [](auto const& freeze) { return freeze.param.name(); });

}  // namespace
}  // namespace bench::vehicle
