#include "ara/com/dds/calls/served_instance.h"

#include "ara/log/logging.h"
#include "tarq/com/exception.h"

#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <utility>

namespace ara::com::dds {

namespace {

// More calls than this that wait for one instance are refused, and when as many refusals wait, calls are dropped.
constexpr int k_most_waiting = 1000;

constexpr std::chrono::milliseconds k_pause_before_next_try{500};

}  // namespace

struct Served_instance::Request {
    std::shared_ptr<void const> sample;
    dds_instance_handle_t client;
    dds_time_t written;
    bool refused;

    dds_rpc_RequestHeader const& header() const { return *static_cast<dds_rpc_RequestHeader const*>(sample.get()); }
};

Served_instance::Served_instance(std::shared_ptr<Engine> engine, Service_type const& type, InstanceIdentifier instance,
                                 Request_handler handler)
    : engine_(std::move(engine)),
      type_(type),
      instance_(std::move(instance)),
      handler_(std::move(handler)),
      strand_(std::make_shared<Strand>(engine_->workers(), Strand::Beginning::k_when_told)),
      replies_(engine_->participant(), type.reply, [this] { send_kept(); }) {}

// A client may be matched before the reader is known here, so the clients are looked at once more. What was requested
// before others could know of the offer waits for that, so that no handler runs if it fails.
void Served_instance::open() {
    auto const opening = engine_->adopt(weak_from_this());
    engine_->announcer().claim(type_.name, instance_.ToString());
    claimed_ = true;
    auto reader = std::make_shared<Reader>(
        engine_->participant(), Channel{type_.request, instance_.ToString()}, call_quality(k_longest_write),
        [this](Sample sample, dds_sample_info_t const& info) { received(std::move(sample), info); },
        [this] { follow_clients(); });
    {
        base::Lock_guard const lock(mutex_);
        requests_ = std::move(reader);
    }
    follow_clients();
    engine_->announcer().announce(type_.name, instance_.ToString());
    strand_->begin();
}

void Served_instance::close() {
    auto const closing = engine_->close_part();
    std::shared_ptr<Reader> reader;
    {
        base::Lock_guard const lock(mutex_);
        reader = std::move(requests_);
    }
    if (claimed_.exchange(false)) {
        engine_->announcer().withdraw(type_.name, instance_.ToString());
    }
    strand_->close();
    replies_.close();
}

std::shared_ptr<Reader> Served_instance::requests() {
    base::Lock_guard const lock(mutex_);
    return requests_;
}

// One look at all clients does for all that came before it.
void Served_instance::follow_clients() {
    if (following_.exchange(true)) {
        return;
    }
    engine_->strand()->post([weak = weak_from_this()] {
        auto const self = weak.lock();
        if (!self) {
            return;
        }
        self->following_ = false;
        self->follow_clients_now();
    });
}

// A client whose way can't be made just then waits for it and does not call, so that nothing else would try again.
void Served_instance::follow_clients_now() {
    auto const reader = requests();
    if (!reader) {
        return;
    }
    try {
        replies_.follow(reader->entity());
        failure_.succeeded();
    } catch (tarq::com::Infrastructure_exception const& error) {
        failure_.failed(error);
        engine_->timer().watch(weak_from_this(), Clock::now() + k_pause_before_next_try);
    }
}

std::optional<Clock::time_point> Served_instance::expire(Clock::time_point /*now*/) {
    follow_clients();
    return std::nullopt;
}

// What comes after the withdrawal is the next offer's, whose reader may be there before this one has gone.
void Served_instance::received(Sample sample, dds_sample_info_t const& info) {
    if (!info.valid_data || !claimed_) {
        return;
    }
    auto const waiting = waiting_.fetch_add(1);
    if (waiting >= 2 * k_most_waiting) {
        --waiting_;
        return;
    }
    Request request{std::move(sample), info.publication_handle, info.source_timestamp, waiting >= k_most_waiting};
    strand_->post([weak = weak_from_this(), request = std::move(request)] {
        if (auto const self = weak.lock()) {
            --self->waiting_;
            self->serve(request);
        }
    });
}

void Served_instance::serve(Request const& request) {
    if (!recent_.is_new(request.header().requestId, request.written)) {
        return;
    }
    if (request.refused) {
        refuse(request, dds_rpc_REMOTE_EX_OUT_OF_RESOURCES);
        return;
    }
    bool answered = false;
    auto const answer = [&](void* reply, std::shared_ptr<void const> contents) {
        if (!std::exchange(answered, true)) {
            send(request, dds_rpc_REMOTE_EX_OK, reply, std::move(contents));
        }
    };
    auto const code = handle(request, answer);
    if (!answered) {
        refuse(request, code);
    }
}

// The code is for a handler that did not answer.
dds_rpc_RemoteExceptionCode_t Served_instance::handle(Request const& request, Reply_sink const& answer) {
    if (instance_.ToString() != request.header().instanceName) {
        return dds_rpc_REMOTE_EX_INVALID_ARGUMENT;
    }
    try {
        handler_(request.sample.get(), answer);
    } catch (Unknown_operation const&) {
        return dds_rpc_REMOTE_EX_UNKNOWN_OPERATION;
    } catch (std::exception const& error) {
        ara::log::LogError() << "A method of " << instance_.ToString() << " threw " << error.what();
    } catch (...) {
        ara::log::LogError() << "A method of " << instance_.ToString() << " threw "
                             << "something that is not an exception";
    }
    return dds_rpc_REMOTE_EX_UNKNOWN_EXCEPTION;
}

void Served_instance::refuse(Request const& request, dds_rpc_RemoteExceptionCode_t code) {
    auto const reply = make_sample(type_.reply);
    std::memcpy(static_cast<std::byte*>(reply.get()) + type_.reply_union, &k_no_operation, sizeof k_no_operation);
    send(request, code, reply.get(), nullptr);
}

// Nobody here can do anything about a reply that does not reach its client: it is missed there, or the client has gone.
void Served_instance::send(Request const& request, dds_rpc_RemoteExceptionCode_t code, void* reply,
                           std::shared_ptr<void const> contents) {
    auto& header = *static_cast<dds_rpc_ReplyHeader*>(reply);
    header.relatedRequestId = request.header().requestId;
    header.remoteEx = code;
    try {
        if (auto const reader = requests()) {
            replies_.send(reader->entity(), request.client, reply, std::move(contents));
        }
    } catch (tarq::com::Infrastructure_exception const& error) {
        tell_lost(error);
    }
}

void Served_instance::tell_lost(tarq::com::Infrastructure_exception const& error) const {
    ara::log::LogWarn() << "A reply of " << instance_.ToString() << " is lost: " << error.what();
}

// A client's reader became known, or went.
void Served_instance::send_kept() {
    strand_->post([weak = weak_from_this()] {
        auto const self = weak.lock();
        if (!self) {
            return;
        }
        try {
            self->replies_.send_kept();
        } catch (tarq::com::Infrastructure_exception const& error) {
            self->tell_lost(error);
        }
    });
}

}  // namespace ara::com::dds
