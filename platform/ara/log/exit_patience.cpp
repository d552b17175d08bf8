#include "ara/log/exit_patience.h"

#include <thread>

namespace ara::log {

bool Exit_patience::waits_for(std::uint64_t left) {
    auto const now = Clock::now();
    if (left < left_) {
        last_progress_ = now;
    }
    left_ = left;
    if (now - last_progress_ >= k_without_progress || now - start_ >= k_longest) {
        return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return true;
}

}  // namespace ara::log
