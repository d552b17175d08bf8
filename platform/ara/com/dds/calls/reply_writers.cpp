#include "ara/com/dds/calls/reply_writers.h"

#include "ara/log/logging.h"
#include "tarq/com/exception.h"

#include <cstddef>
#include <exception>
#include <utility>
#include <vector>

namespace ara::com::dds {

namespace {

// More than find a place on a machine, unless each calls through several proxies.
constexpr std::size_t k_most_ways = 128;

// More than a client has calls on their way before it is known.
constexpr std::size_t k_most_kept = 16;

bool has_reader(dds_entity_t writer) {
    dds_publication_matched_status_t status{};
    return dds_get_publication_matched_status(writer, &status) == DDS_RETCODE_OK && status.current_count > 0;
}

}  // namespace

/// One client. Its reader may be known later than its requests come, even though it waited for both ends: each end is
/// announced by itself. What was written before would be lost, so it is kept. A single thread at a time sends.
class Reply_writers::Way {
 public:
    Way(Participant& participant, Topic_type const& reply, Guid const& client, Matched_handler const& reader_came)
        : size_(reply.size),
          writer_(participant, {reply, to_text(client)}, call_quality(k_longest_reply_write), reader_came) {}

    void send(void const* reply, std::shared_ptr<void const> contents) {
        send_kept();
        if (reached_) {
            writer_.write(reply);
        } else if (kept_.size() < k_most_kept) {
            auto const* const octets = static_cast<std::byte const*>(reply);
            kept_.push_back({{octets, octets + size_}, std::move(contents)});
        }
    }

    void send_kept() {
        reached_ = reached_ || has_reader(writer_.entity());
        if (!reached_) {
            return;
        }
        for (auto const& reply : std::exchange(kept_, {})) {
            writer_.write(reply.octets.data());
        }
    }

 private:
    struct Kept {
        std::vector<std::byte> octets;
        std::shared_ptr<void const> contents;
    };

    std::size_t const size_;
    Writer const writer_;
    bool reached_{false};
    std::vector<Kept> kept_;
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
            ways_.emplace(client.handle, std::make_shared<Way>(participant_, reply_, client.identity, reader_came_));
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

std::vector<std::shared_ptr<Reply_writers::Way>> Reply_writers::all() {
    base::Lock_guard const lock(mutex_);
    std::vector<std::shared_ptr<Way>> ways;
    for (auto const& [client, way] : ways_) {
        ways.push_back(way);
    }
    return ways;
}

std::shared_ptr<Reply_writers::Way> Reply_writers::way_to(dds_instance_handle_t client) {
    base::Lock_guard const lock(mutex_);
    auto const known = ways_.find(client);
    return known == ways_.end() ? nullptr : known->second;
}

void Reply_writers::send(dds_entity_t requests, dds_instance_handle_t client, void const* reply,
                         std::shared_ptr<void const> contents) {
    auto way = way_to(client);
    if (!way && !is_full()) {
        follow(requests);
        way = way_to(client);
    }
    if (way) {
        way->send(reply, std::move(contents));
    }
}

void Reply_writers::send_kept() {
    for (auto const& way : all()) {
        way->send_kept();
    }
}

void Reply_writers::close() {
    Ways gone;
    base::Lock_guard const lock(mutex_);
    closed_ = true;
    std::swap(gone, ways_);
}

}  // namespace ara::com::dds
