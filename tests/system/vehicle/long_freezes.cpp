// Freezes up to what a lease bears, and longer ones, after which everybody has given up everybody else.

#include "frozen_machine.h"

namespace bench::vehicle {
namespace {

using std::chrono::seconds;

class Frozen_for_long : public Frozen_machine {};

TEST_P(Frozen_for_long, Machine_loses_nothing) {
    start();
    suspend_and_resume();
    expect_nothing_lost();
}

std::vector<Freeze> freezes() {
    std::vector<Freeze> all;
    for (auto const time : {seconds(2), seconds(25), seconds(60)}) {
        for (auto const place : {Place::running, Place::preparing, Place::prepared, Place::resuming}) {
            all.push_back({place, time});
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(At_length, Frozen_for_long, testing::ValuesIn(freezes()),
                         [](auto const& freeze) { return freeze.param.name(); });

}  // namespace
}  // namespace bench::vehicle
