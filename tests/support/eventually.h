#ifndef TESTS_SUPPORT_EVENTUALLY_H
#define TESTS_SUPPORT_EVENTUALLY_H

#include <chrono>
#include <thread>

namespace test_support {

/// Waits until the condition holds; false when it does not within the time, which is long: only failures take it.
template <class Condition>
bool eventually(Condition const& condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace test_support

#endif
