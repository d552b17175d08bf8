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

TEST(Handled_end_signals, Are_those_that_are_not_ignored) {
    auto const former = ::signal(SIGHUP, SIG_IGN);
    auto const handler = [](int /*number*/) {};
    handle_end_signals(handler);
    for (int const number : k_end_signals) {
        struct sigaction action {};
        ::sigaction(number, nullptr, &action);
        EXPECT_EQ(action.sa_handler, number == SIGHUP ? SIG_IGN : +handler) << number;
    }
    handle_end_signals(SIG_DFL);
    ::signal(SIGHUP, former);
}

}  // namespace
}  // namespace base
