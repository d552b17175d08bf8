// The part of Caller that carries the calls, from the request to the reply or the end of their time.

#include "ara/com/dds/calls/caller.h"

#include "ara/com/dds/engine/closing.h"
#include "ara/com/dds/events/event_receiver.h"
#include "tarq/com/exception.h"

#include <chrono>
#include <utility>

namespace ara::com::dds {

using tarq::com::Infrastructure_exception;
using tarq::com::Service_not_available_exception;
using tarq::com::Timeout_exception;

Caller::Caller(std::shared_ptr<Engine> engine, Service_type const& type, InstanceIdentifier const& instance)
    : engine_(std::move(engine)), type_(type), instance_(instance) {}

void Caller::open() {
    engine_->adopt(weak_from_this());
    auto path = make_path();
    {
        base::Lock_guard lock(mutex_);
        path_ = std::move(path);
    }
    engine_->offers().add(weak_from_this(), type_.name, InstanceSpecifier(instance_.ToString()));
}

std::shared_ptr<Call_path> Caller::make_path() {
    return std::make_shared<Call_path>(
        engine_->participant(), type_, instance_.ToString(),
        [this](Sample reply, dds_sample_info_t const& info) {
            if (info.valid_data) {
                received(reply.get());
            }
        },
        [this] { connection_changed(); });
}

// An instance that was just found is connected within a few milliseconds; a server that stands still is given the whole
// time of the call.
void Caller::call(void* request, std::unique_ptr<Pending_reply> pending) {
    auto const deadline = Clock::now() + type_.longest_call;
    std::optional<Begun_call> begun;
    try {
        do {
            await_server(deadline);
            begun = begin(pending, deadline);
        } while (!begun);
        begun->path->send(request, begun->number);
    } catch (Infrastructure_exception const&) {
        if (begun) {
            base::Lock_guard lock(mutex_);
            pending = calls_.take(begun->number);
        }
        if (pending) {
            pending->fail(std::current_exception());
        }
    }
}

// Nothing when the server has gone since it was reached.
std::optional<Caller::Begun_call> Caller::begin(std::unique_ptr<Pending_reply>& pending, Clock::time_point deadline) {
    base::Lock_guard lock(mutex_);
    if (!reached_ || !path_) {
        return std::nullopt;
    }
    auto const number = calls_.add(std::move(pending), deadline);
    look_at(deadline);
    return Begun_call{path_, number};
}

// The timer need not know of each call: the first look tells of the next.
void Caller::look_at(Clock::time_point when) {
    if (!next_look_ || when < *next_look_) {
        next_look_ = when;
        engine_->timer().watch(weak_from_this(), when);
    }
}

void Caller::received(void const* reply) {
    auto const& header = *static_cast<dds_rpc_ReplyHeader const*>(reply);
    auto const pending = take(header);
    if (!pending) {
        return;
    }
    if (header.remoteEx == dds_rpc_REMOTE_EX_OK) {
        pending->succeed(reply);
    } else {
        auto const code = static_cast<tarq::com::Remote_exception_code>(header.remoteEx);
        pending->fail(std::make_exception_ptr(tarq::com::Remote_exception(code)));
    }
}

std::unique_ptr<Pending_reply> Caller::take(dds_rpc_ReplyHeader const& header) {
    base::Lock_guard lock(mutex_);
    return path_ ? calls_.take(path_->number_of(header)) : nullptr;
}

// A look that an earlier one has overtaken finds that another is to come.
std::optional<Clock::time_point> Caller::expire(Clock::time_point now) {
    Pending_calls::Late late;
    std::optional<Clock::time_point> next;
    {
        base::Lock_guard lock(mutex_);
        if (!next_look_ || now < *next_look_) {
            return std::nullopt;
        }
        late = calls_.take_late(now);
        next_look_ = next = calls_.next_deadline();
    }
    fail_all(late.unanswered, std::make_exception_ptr(Timeout_exception("The service did not answer in time")));
    fail_all(late.lost, std::make_exception_ptr(Service_not_available_exception()));
    return next;
}

std::unique_ptr<Subscription> Caller::subscribe(Event_type const& event, Sample_handler handler) {
    auto receiver = std::make_shared<Event_receiver>(engine_, event, std::move(handler));
    receiver->open(instance_);
    return std::make_unique<Closing<Subscription, Event_receiver>>(std::move(receiver));
}

void Caller::release() {
    std::shared_ptr<Call_path> path;
    Pending_calls::Replies lost;
    {
        base::Lock_guard lock(mutex_);
        path = std::move(path_);
        reached_ = false;
        lost = calls_.take_all();
        changed_.notify_all();
    }
    fail_all(lost, std::make_exception_ptr(Infrastructure_exception("The communication runtime has ended")));
}

void Caller::close() {
    release();
}

}  // namespace ara::com::dds
