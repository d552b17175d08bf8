#ifndef ARA_COM_RUNNING_HANDLERS_H
#define ARA_COM_RUNNING_HANDLERS_H

#include "base/condition.h"
#include "base/mutex.h"

#include <cstdint>
#include <thread>

namespace ara::com {

/// The handlers of one object that run, and the ends that wait for them. An offer or a subscription waits for its own
/// handler when it goes; whoever ends the object a second time meanwhile finds neither, and waits here. Needs no
/// memory, since destructors end. Thread-safe.
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
    /// Something that is under way, a link of a chain in the order of the numbers.
    class Entry {
     public:
        Entry(Running_handlers& all, std::thread::id handler) : all_(all), handler_(handler) { all_.add(*this); }
        ~Entry() { all_.remove(*this); }
        Entry(Entry const&) = delete;
        Entry& operator=(Entry const&) = delete;

     private:
        friend class Running_handlers;

        Running_handlers& all_;
        std::thread::id const handler_;  // its thread, which an end has not
        std::uint64_t number_{0};
        Entry* before_{nullptr};
        Entry* next_{nullptr};
    };

    void add(Entry& entry) {
        base::Lock_guard const lock(mutex_);
        entry.number_ = ++last_;
        entry.before_ = newest_;
        (newest_ == nullptr ? oldest_ : newest_->next_) = &entry;
        newest_ = &entry;
    }

    void remove(Entry& entry) {
        base::Lock_guard const lock(mutex_);
        (entry.before_ == nullptr ? oldest_ : entry.before_->next_) = entry.next_;
        (entry.next_ == nullptr ? newest_ : entry.next_->before_) = entry.before_;
        changed_.notify_all();
    }

    // What begins later belongs to a newer offer or subscription.
    void wait() {
        base::Lock_guard const lock(mutex_);
        for (auto const* entry = oldest_; entry != nullptr; entry = entry->next_) {
            if (entry->handler_ == std::this_thread::get_id()) {
                return;
            }
        }
        for (auto const last = last_; oldest_ != nullptr && oldest_->number_ <= last;) {
            changed_.wait(mutex_);
        }
    }

    base::Mutex mutex_;
    base::Condition changed_;
    std::uint64_t last_ GUARDED_BY(mutex_){0};
    Entry* oldest_ GUARDED_BY(mutex_){nullptr};
    Entry* newest_ GUARDED_BY(mutex_){nullptr};
};

}  // namespace ara::com

#endif
