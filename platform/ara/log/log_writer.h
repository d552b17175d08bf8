#ifndef ARA_LOG_LOG_WRITER_H
#define ARA_LOG_LOG_WRITER_H

#include "base/descriptor.h"

#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
#include <thread>

namespace ara::log {

/// The one thread that empties the queue. It sleeps until it is woken: at once by what is severe and by a filling
/// queue, which costs the waker about ten microseconds, or a period after the first other message since its last look,
/// which sets its alarm and costs one system call of less than one; what follows until then costs nothing. While it
/// could not take everything it looks each period by itself. All signals are blocked in it: no handler ever runs
/// between it and the log daemon's client.
///
/// No wake-up gets lost: the alarm is taken for unset before each look, and who wakes has put his message into the
/// queue before. Both are sequentially consistent, and so is how the queue counts its messages: either the look finds
/// the message or its sender finds the alarm unset.
class Log_writer {
 public:
    static constexpr std::chrono::milliseconds k_period{100};

    /// `drain` hands on what is queued and returns whether nothing was left.
    explicit Log_writer(std::function<bool()> drain, std::chrono::nanoseconds period = k_period);

    void start();  ///< throws `std::system_error` when there can't be one more thread
    void stop();   ///< returns when the thread has ended

    // Any thread, any signal handler.
    void wake() noexcept;
    void wake_in_a_period() noexcept;

 private:
    void run();
    void wait(bool sleeps);
    bool can_be_woken() const noexcept { return event_.is_open() && alarm_.is_open(); }

    std::function<bool()> drain_;
    timespec const period_;
    base::Descriptor const event_;  ///< eventfd; it or the alarm is none when the system has none left, then the period
    base::Descriptor const alarm_;  ///< alone paces the thread
    std::atomic<bool> wake_pending_{false};
    std::atomic<bool> alarm_is_set_{true};  ///< its first look comes by itself
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace ara::log

#endif
