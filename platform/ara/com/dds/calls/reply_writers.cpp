#include "ara/com/dds/calls/reply_writers.h"

#include "ara/log/logging.h"
#include "tarq/com/exception.h"

#include <chrono>
#include <cstddef>
#include <exception>
#include <thread>
#include <utility>

namespace ara::com::dds {

namespace {

// How long the first reply to a client waits for the client's reader to be known. It is known already when the client
// waits for this writer before its first call, as clients should.
constexpr std::chrono::milliseconds k_longest_wait_for_reader{50};
constexpr std::chrono::microseconds k_look_again{200};

// More than find a place on a machine, unless each calls through several proxies.
constexpr std::size_t k_most_ways = 128;

bool has_reader(dds_entity_t writer) {
    dds_publication_matched_status_t status{};
    return dds_get_publication_matched_status(writer, &status) == DDS_RETCODE_OK && status.current_count > 0;
}

}  // namespace

/// One client. A single thread at a time sends.
class Reply_writers::Way {
 public:
    Way(Participant& participant, Topic_type const& reply, Guid const& client)
        : writer_(participant, {reply, to_text(client)}, call_quality(k_longest_reply_write)) {}

    void send(void const* reply) {
        if (!std::exchange(began_, true)) {
            await_reader();
        }
        writer_.write(reply);
    }

 private:
    void await_reader() const {
        auto const deadline = std::chrono::steady_clock::now() + k_longest_wait_for_reader;
        while (!has_reader(writer_.entity()) && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(k_look_again);
        }
    }

    Writer const writer_;
    bool began_{false};
};

// Clients are looked at under the mutex: a look that another thread overtook would take a new client's way from it.
void Reply_writers::follow(dds_entity_t requests) {
    Ways gone;
    base::Lock_guard const lock(mutex_);
    if (closed_) {
        return;
    }
    auto const clients = writers_matched_by(requests);
    std::swap(gone, ways_);
    for (auto const& client : clients) {
        ways_.insert(gone.extract(client.handle));
    }
    add_those_of(clients);
}

void Reply_writers::add_those_of(std::vector<Peer> const& clients) {
    std::exception_ptr failure;
    for (auto const& client : clients) {
        if (ways_.count(client.handle) != 0) {
            continue;
        }
        if (ways_.size() >= k_most_ways) {
            tell_once();
            break;
        }
        try {
            ways_.emplace(client.handle, std::make_shared<Way>(participant_, reply_, client.identity));
        } catch (tarq::com::Infrastructure_exception const&) {
            failure = std::current_exception();
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void Reply_writers::tell_once() {
    if (!std::exchange(told_, true)) {
        ara::log::LogWarn() << "An instance has more than " << k_most_ways << " clients; the others get no replies";
    }
}

bool Reply_writers::is_full() {
    base::Lock_guard const lock(mutex_);
    return ways_.size() >= k_most_ways;
}

std::shared_ptr<Reply_writers::Way> Reply_writers::way_to(dds_instance_handle_t client) {
    base::Lock_guard const lock(mutex_);
    auto const known = ways_.find(client);
    return known == ways_.end() ? nullptr : known->second;
}

void Reply_writers::send(dds_entity_t requests, dds_instance_handle_t client, void const* reply) {
    auto way = way_to(client);
    if (!way && !is_full()) {
        follow(requests);
        way = way_to(client);
    }
    if (way) {
        way->send(reply);
    }
}

void Reply_writers::close() {
    Ways gone;
    base::Lock_guard const lock(mutex_);
    closed_ = true;
    std::swap(gone, ways_);
}

}  // namespace ara::com::dds
