#ifndef ARA_LOG_LOG_WRITER_H
#define ARA_LOG_LOG_WRITER_H

#include "ara/log/log_engine.h"
#include "base/descriptor.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace ara::log {

/// The one thread that empties the queue. It looks for messages every `k_period` and at once when it is woken; waking
/// it costs the waker a system call of about ten microseconds, so only severe messages and a filling queue do. All
/// signals are blocked in it: no handler ever runs between it and the log daemon's client.
class Log_engine::Writer {
 public:
    static constexpr std::chrono::milliseconds k_period{100};

    explicit Writer(std::function<void()> drain);
    ~Writer() = delete;  // lives until the process ends

    void wake() noexcept;  ///< any thread, any signal handler
    void stop();           ///< returns when the thread has ended

 private:
    void run();

    std::function<void()> drain_;
    base::Descriptor const event_;  ///< eventfd; none when the system has none left, then the period alone paces it
    std::atomic<bool> wake_pending_{false};
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace ara::log

#endif
