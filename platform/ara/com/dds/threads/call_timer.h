#ifndef ARA_COM_DDS_THREADS_CALL_TIMER_H
#define ARA_COM_DDS_THREADS_CALL_TIMER_H

#include "base/condition.h"
#include "base/mutex.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <thread>

namespace ara::com::dds {

using Clock = std::chrono::steady_clock;

/// Who has calls, or something else, that must not wait for ever.
class Expiring {
 public:
    virtual ~Expiring() = default;
    /// Ends what has waited for its time, and tells when to look again; nothing when nothing is left. Must not block.
    virtual std::optional<Clock::time_point> expire(Clock::time_point now) = 0;
};

/// Looks after the deadlines of calls, and of who is awaited, on a thread of its own. It is not woken for
/// each call: who has calls stays noted until a look finds none. Thread-safe.
class Call_timer {
 public:
    ~Call_timer() { stop(); }

    /// Throws `tarq::com::Infrastructure_exception` when there is no thread to be had. May be repeated.
    void start();

    /// Looks at the calls at their first deadline, and again when they say so, until none is left.
    void watch(std::weak_ptr<Expiring> calls, Clock::time_point first);

    /// Ends the thread; nothing is watched any more.
    void stop();

 private:
    void run();
    std::weak_ptr<Expiring> next();

    base::Mutex mutex_;
    base::Condition changed_;
    std::multimap<Clock::time_point, std::weak_ptr<Expiring>> watched_ GUARDED_BY(mutex_);
    bool stopped_ GUARDED_BY(mutex_){false};
    std::thread thread_ GUARDED_BY(mutex_);
};

}  // namespace ara::com::dds

#endif
