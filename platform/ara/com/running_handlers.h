#ifndef ARA_COM_RUNNING_HANDLERS_H
#define ARA_COM_RUNNING_HANDLERS_H

#include "base/mutex.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <thread>

namespace ara::com {

/// The handlers of one object that run, and the ends that wait for them. An offer or a subscription waits for its own
/// handler when it goes; whoever ends the object a second time meanwhile finds neither, and waits here. Thread-safe.
class Running_handlers {
 public:
    /// Calls a handler.
    template <class Handler>
    void run(Handler const& handler) {
        Entry const entry(*this, std::this_thread::get_id());
        handler();
    }

    /// Calls `finish`, which lets no further handler begin, and waits for all handlers and ends that began before; only
    /// the former when a handler calls it.
    template <class Finish>
    void end(Finish const& finish) {
        {
            Entry const entry(*this, {});
            finish();
        }
        wait();
    }

 private:
    /// Something that is under way.
    class Entry {
     public:
        Entry(Running_handlers& all, std::thread::id handler) : all_(all), number_(all.add(handler)) {}
        ~Entry() { all_.remove(number_); }
        Entry(Entry const&) = delete;
        Entry& operator=(Entry const&) = delete;

     private:
        Running_handlers& all_;
        std::uint64_t const number_;
    };

    std::uint64_t add(std::thread::id handler) {
        base::Lock_guard lock(mutex_);
        under_way_[++last_] = handler;
        return last_;
    }

    void remove(std::uint64_t number) {
        base::Lock_guard lock(mutex_);
        under_way_.erase(number);
        changed_.notify_all();
    }

    // What begins later belongs to a newer offer or subscription.
    void wait() {
        base::Lock_guard lock(mutex_);
        auto const is_ours = [self = std::this_thread::get_id()](auto const& entry) { return entry.second == self; };
        if (std::any_of(under_way_.begin(), under_way_.end(), is_ours)) {
            return;
        }
        for (auto const last = last_; !under_way_.empty() && under_way_.begin()->first <= last;) {
            changed_.wait(mutex_);
        }
    }

    base::Mutex mutex_;
    std::condition_variable_any changed_;
    std::uint64_t last_ GUARDED_BY(mutex_) = 0;
    std::map<std::uint64_t, std::thread::id> under_way_ GUARDED_BY(mutex_);  // with its thread, which an end has not
};

}  // namespace ara::com

#endif
