#ifndef ARA_COM_SKELETON_EVENT_H
#define ARA_COM_SKELETON_EVENT_H

#include "ara/com/skeleton.h"
#include "base/mutex.h"
#include "ximo/com/future.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace ara::com {

/// The sending end of an event in a skeleton. Thread-safe.
template <class Value>
class Skeleton_event : public Offered_part {
 public:
    /// Makes a sample of the value and gives it to the sink.
    using Encode = void (*)(Value const& value, std::function<void(void const*)> const& sink);

    Skeleton_event(Event_type const& type, Encode encode) : type_(type), encode_(encode) {}

    /// Sends to all subscribers; to nobody while the instance is not offered. Bounded in time. Throws
    /// `tarq::com::Infrastructure_exception` when the value can't be sent.
    void Send(Value const& value) {
        base::Lock_guard const lock(mutex_);
        send(value, Clock::now());
    }

    void open(InstanceIdentifier const& instance) override {
        base::Lock_guard const lock(mutex_);
        source_ = binding()->offer_event(type_, instance);
    }
    void close() override {
        base::Lock_guard const lock(mutex_);
        source_.reset();
    }

 protected:
    using Clock = std::chrono::system_clock;

    void send(Value const& value, Clock::time_point set) REQUIRES(mutex_) {
        if (source_) {
            auto& source = *source_;
            encode_(value, [&source, set](void const* sample) { source.send(sample, set); });
        }
    }

    base::Mutex mutex_;

 private:
    Event_type const& type_;
    Encode const encode_;
    std::unique_ptr<Event_source> source_ GUARDED_BY(mutex_);
};

/// A field with a getter and a notification. Its subscribers get the newest value at once, also those who come later.
template <class Value>
class Skeleton_field : public Skeleton_event<Value> {
 public:
    using Get_handler = std::function<ximo::com::Future<Value>()>;

    using Skeleton_event<Value>::Skeleton_event;

    /// Sets the value and notifies all subscribers, also when the value is the same as before. A value that is set
    /// before the instance is offered is sent with the offer; a new offer sends it to those who have not had it. Throws
    /// as `Send` does.
    void Update(Value const& value) {
        base::Lock_guard const lock(this->mutex_);
        value_ = value;
        set_ = std::max(Clock::now(), set_ + typename Clock::duration(1));
        this->send(value, set_);
    }

    /// Answers `Get` instead of the last value that was set. Set it before the instance is offered.
    void RegisterGetHandler(Get_handler handler) {
        base::Lock_guard const lock(this->mutex_);
        get_ = std::move(handler);
    }

    /// The getter's answer; the interface's code calls it. An empty value when none was set.
    Value get() {
        Get_handler handler;
        {
            base::Lock_guard const lock(this->mutex_);
            if (!get_) {
                return value_.value_or(Value());
            }
            handler = get_;
        }
        return handler().get();
    }

    void open(InstanceIdentifier const& instance) override {
        Skeleton_event<Value>::open(instance);
        base::Lock_guard const lock(this->mutex_);
        if (value_) {
            this->send(*value_, set_);
        }
    }

 private:
    using typename Skeleton_event<Value>::Clock;

    std::optional<Value> value_ GUARDED_BY(this->mutex_);
    typename Clock::time_point set_ GUARDED_BY(this->mutex_);  // differs for each value, whatever becomes of the clock
    Get_handler get_ GUARDED_BY(this->mutex_);
};

}  // namespace ara::com

#endif
