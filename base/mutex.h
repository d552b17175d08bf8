#ifndef BASE_MUTEX_H
#define BASE_MUTEX_H

#include "base/thread_annotations.h"

#include <mutex>

namespace base {

class Condition;

/// The standard mutexes with the annotations that clang's lock checking needs. `Mutex` is not recursive.
template <class Native>
class CAPABILITY("mutex") Annotated_mutex {
 public:
    void lock() ACQUIRE() { native_.lock(); }
    void unlock() RELEASE() { native_.unlock(); }

 private:
    friend class Condition;

    Native native_;
};

using Mutex = Annotated_mutex<std::mutex>;
using Recursive_mutex = Annotated_mutex<std::recursive_mutex>;

/// Holds a mutex from construction to the end of its scope.
template <class Mutex_type>
class SCOPED_CAPABILITY Lock_guard {
 public:
    explicit Lock_guard(Mutex_type& mutex) ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~Lock_guard() RELEASE() { mutex_.unlock(); }
    Lock_guard(Lock_guard const&) = delete;
    Lock_guard& operator=(Lock_guard const&) = delete;

 private:
    Mutex_type& mutex_;
};

}  // namespace base

#endif
