#include "base/end_signals.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(Heeded_end_signals, Are_those_that_are_not_ignored) {
    auto const former = ::signal(SIGHUP, SIG_IGN);
    auto const signals = heeded_end_signals();
    ::signal(SIGHUP, former);
    for (int const number : k_end_signals) {
        EXPECT_EQ(sigismember(&signals, number), number != SIGHUP) << number;
    }
}

}  // namespace
}  // namespace base
