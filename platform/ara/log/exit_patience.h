#ifndef ARA_LOG_EXIT_PATIENCE_H
#define ARA_LOG_EXIT_PATIENCE_H

#include <chrono>
#include <cstdint>

namespace ara::log {

/// How long the end of the process waits for somebody who takes the last messages: as long as he takes some, 300 ms
/// after the last that he took, and two seconds at most.
class Exit_patience {
 public:
    static constexpr std::chrono::milliseconds k_without_progress{300};
    static constexpr std::chrono::milliseconds k_longest{2000};

    /// Waits a moment; `left` is how much still has to be taken. False when it is not worth waiting any longer.
    bool waits_for(std::uint64_t left);

 private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point const start_{Clock::now()};
    Clock::time_point last_progress_{start_};
    std::uint64_t left_{UINT64_MAX};
};

}  // namespace ara::log

#endif
