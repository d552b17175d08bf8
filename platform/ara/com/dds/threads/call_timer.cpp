#include "ara/com/dds/threads/call_timer.h"

#include "ara/com/dds/threads/started_thread.h"

#include <utility>

#include <pthread.h>

namespace ara::com::dds {

void Call_timer::start() {
    base::Lock_guard const lock(mutex_);
    if (!stopped_ && !thread_.joinable()) {
        thread_ = started_thread([this] { run(); });
    }
}

void Call_timer::watch(std::weak_ptr<Expiring> calls, Clock::time_point first) {
    base::Lock_guard const lock(mutex_);
    if (stopped_) {
        return;
    }
    auto const added = watched_.emplace(first, std::move(calls));
    if (added == watched_.begin()) {
        changed_.notify_one();
    }
}

void Call_timer::stop() {
    std::thread thread;
    {
        base::Lock_guard const lock(mutex_);
        stopped_ = true;
        watched_.clear();
        thread = std::move(thread_);
    }
    changed_.notify_one();
    if (thread.joinable()) {
        thread.join();
    }
}

void Call_timer::run() {
    pthread_setname_np(pthread_self(), "com-timer");
    for (;;) {
        auto const due = next();
        auto const calls = due.lock();
        auto const again = calls ? calls->expire(Clock::now()) : std::nullopt;
        base::Lock_guard const lock(mutex_);
        if (stopped_) {
            return;
        }
        if (again) {
            watched_.emplace(*again, due);
        }
    }
}

// Nothing when the thread is to end.
std::weak_ptr<Expiring> Call_timer::next() {
    base::Lock_guard const lock(mutex_);
    while (!stopped_) {
        if (watched_.empty()) {
            changed_.wait(mutex_);
        } else if (watched_.begin()->first > Clock::now()) {
            auto const first = watched_.begin()->first;
            changed_.wait_until(mutex_, first);
        } else {
            auto calls = watched_.begin()->second;
            watched_.erase(watched_.begin());
            return calls;
        }
    }
    return {};
}

}  // namespace ara::com::dds
