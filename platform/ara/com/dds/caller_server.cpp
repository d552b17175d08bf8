// The part of Caller that follows the server: who offers the instance, and whether requests reach it.

#include "ara/com/dds/caller.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <utility>

namespace ara::com::dds {

using tarq::com::Infrastructure_exception;
using tarq::com::Service_not_available_exception;

std::vector<Guid> Caller::servers_among(Known_offer_list const& offers) const {
    std::vector<Guid> servers;
    for (auto const& offer : offers) {
        if (offer.interface_name == type_.name && offer.instance == instance_.ToString()) {
            servers.push_back(offer.participant);
        }
    }
    return servers;
}

void Caller::offers_changed(Known_offer_list const& offers) {
    auto const servers = servers_among(offers);
    Pending_calls::Replies lost;
    {
        base::Lock_guard lock(mutex_);
        informed_ = true;
        if (!server_ || std::find(servers.begin(), servers.end(), *server_) == servers.end()) {
            server_ = servers.empty() ? std::nullopt : std::make_optional(servers.front());
            reached_ = false;
            ++version_;
            lost = calls_.take_all();
        }
        changed_.notify_all();
    }
    fail_all(lost, std::make_exception_ptr(Service_not_available_exception()));
}

void Caller::connection_changed() {
    base::Lock_guard lock(mutex_);
    ++version_;
    changed_.notify_all();
}

// Throws when there is none.
void Caller::await_server(Clock::time_point deadline) {
    unsigned seen = 0;
    while (auto const candidate = next_candidate(seen, deadline)) {
        seen = candidate->version;
        if (candidate->path->reaches(candidate->server)) {
            set_reached(candidate->server);
        }
    }
}

// Waits for one that was not seen yet; nothing when the server is reached already.
std::optional<Caller::Candidate> Caller::next_candidate(unsigned seen, Clock::time_point deadline) {
    base::Lock_guard lock(mutex_);
    while (!reached_) {
        if (!path_) {
            throw Infrastructure_exception("The communication runtime does not run");
        }
        if (informed_ && !server_) {
            throw Service_not_available_exception();
        }
        if (informed_ && version_ != seen) {
            return Candidate{path_, *server_, version_};
        }
        if (changed_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
            throw tarq::com::Timeout_exception("The service could not be reached in time");
        }
    }
    return std::nullopt;
}

void Caller::set_reached(Guid const& server) {
    base::Lock_guard lock(mutex_);
    reached_ = server_ == server;
}

}  // namespace ara::com::dds
