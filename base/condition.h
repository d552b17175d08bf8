#ifndef BASE_CONDITION_H
#define BASE_CONDITION_H

#include "base/mutex.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace base {

/// The standard condition variable, for `Mutex`. (`std::condition_variable_any` takes each mutex, and for that has one
/// of its own, which who waits and who notifies take besides.)
///
/// Who notifies after he has let go of the mutex wakes a thread that can go on at once.
class Condition {
 public:
    void notify_one() noexcept { native_.notify_one(); }
    void notify_all() noexcept { native_.notify_all(); }

    void wait(Mutex& mutex) REQUIRES(mutex) {
        Adopted adopted(mutex);
        native_.wait(adopted.lock);
    }

    template <class Time_point>
    std::cv_status wait_until(Mutex& mutex, Time_point const& deadline) REQUIRES(mutex) {
        Adopted adopted(mutex);
        return native_.wait_until(adopted.lock, deadline);
    }

 private:
    /// The lock that the caller holds, before and after.
    struct Adopted {
        explicit Adopted(Mutex& mutex) : lock(mutex.native_, std::adopt_lock) {}
        ~Adopted() { lock.release(); }
        Adopted(Adopted const&) = delete;
        Adopted& operator=(Adopted const&) = delete;

        std::unique_lock<std::mutex> lock;
    };

    std::condition_variable native_;
};

}  // namespace base

#endif
