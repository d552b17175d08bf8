#include "ara/com/dds/calls/caller.h"

#include "ara/com/dds/engine/closing.h"
#include "ara/com/dds/events/event_receiver.h"
#include "tarq/com/exception.h"

#include <utility>

namespace ara::com::dds {

using tarq::com::Infrastructure_exception;
using tarq::com::Service_not_available_exception;
using tarq::com::Timeout_exception;

Caller::Caller(std::shared_ptr<Engine> engine, Service_type const& type, InstanceIdentifier const& instance)
    : engine_(std::move(engine)), type_(type), instance_(instance) {}

void Caller::open() {
    auto const opening = engine_->adopt(weak_from_this());
    auto path = make_path();
    {
        base::Lock_guard const lock(mutex_);
        server_.open(std::move(path));
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

// Null where the path is right as it is, or where there can't be another.
std::shared_ptr<Call_path> Caller::new_path_for(Known_offer_list const& offers) {
    {
        base::Lock_guard const lock(mutex_);
        if (!server_.needs_new_path(offers)) {
            return nullptr;
        }
    }
    try {
        return make_path();
    } catch (Infrastructure_exception const&) {
        return nullptr;
    }
}

void Caller::offers_changed(Known_offer_list const& offers) {
    auto path = new_path_for(offers);
    Pending_calls::Replies gone;
    {
        base::Lock_guard const lock(mutex_);
        auto const loss = server_.follow(offers, path);
        if (loss.is_final) {
            gone = calls_.take_all();
        } else if (loss.awaited_until) {
            calls_.lose(*loss.awaited_until);
            look_at(*loss.awaited_until);
        }
        changed_.notify_all();
    }
    fail_all(gone, std::make_exception_ptr(Service_not_available_exception()));
}

void Caller::connection_changed() {
    base::Lock_guard const lock(mutex_);
    server_.connection_changed();
    changed_.notify_all();
}

// Throws when there is none.
void Caller::await_server(Clock::time_point deadline) {
    unsigned seen = 0;
    while (auto const candidate = next_candidate(seen, deadline)) {
        seen = candidate->version;
        if (candidate->path->reaches(candidate->offer.participant)) {
            base::Lock_guard const lock(mutex_);
            server_.set_reached(*candidate);
        }
    }
}

// Waits for one that was not seen yet; nothing when the server is reached already.
std::optional<Server_in_reach::Candidate> Caller::next_candidate(unsigned seen, Clock::time_point deadline) {
    base::Lock_guard const lock(mutex_);
    while (!server_.is_reached()) {
        if (!server_.is_open()) {
            throw Infrastructure_exception("The communication runtime does not run");
        }
        if (server_.is_absent()) {
            throw Service_not_available_exception();
        }
        if (auto candidate = server_.candidate(seen)) {
            return candidate;
        }
        if (changed_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
            throw Timeout_exception("The service could not be reached in time");
        }
    }
    return std::nullopt;
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
            base::Lock_guard const lock(mutex_);
            pending = calls_.take(begun->number);
        }
        if (pending) {
            pending->fail(std::current_exception());
        }
    }
}

// Nothing when the server has gone since it was reached.
std::optional<Caller::Begun_call> Caller::begin(std::unique_ptr<Pending_reply>& pending, Clock::time_point deadline) {
    base::Lock_guard const lock(mutex_);
    if (!server_.is_reached()) {
        return std::nullopt;
    }
    auto const number = calls_.add(std::move(pending), deadline);
    look_at(deadline);
    return Begun_call{server_.path(), number};
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
    base::Lock_guard const lock(mutex_);
    return server_.is_open() ? calls_.take(server_.path()->number_of(header)) : nullptr;
}

// A look that an earlier one has overtaken finds that another is to come.
std::optional<Clock::time_point> Caller::expire(Clock::time_point now) {
    Pending_calls::Late late;
    std::optional<Clock::time_point> next;
    {
        base::Lock_guard const lock(mutex_);
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
    auto const closing = engine_->close_part();
    std::shared_ptr<Call_path> path;
    Pending_calls::Replies lost;
    {
        base::Lock_guard const lock(mutex_);
        path = server_.close();
        lost = calls_.take_all();
        changed_.notify_all();
    }
    if (!lost.empty()) {  // an end that nobody waits for needs no memory
        fail_all(lost, std::make_exception_ptr(Infrastructure_exception("The communication runtime has ended")));
    }
}

void Caller::close() {
    release();
}

}  // namespace ara::com::dds
