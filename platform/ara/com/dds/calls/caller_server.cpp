// The part of Caller that follows the server: who offers the instance, and whether requests reach it.

#include "ara/com/dds/calls/caller.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace ara::com::dds {

using tarq::com::Infrastructure_exception;
using tarq::com::Service_not_available_exception;

namespace {

// An instance that is withdrawn and offered again by the same process is another one.
bool is_same(Known_offer const& left, Known_offer const& right) {
    return left.participant == right.participant && left.since == right.since;
}

bool is_as_before(Known_offer const& before, Known_offer const& now) {
    return is_same(before, now) && (!before.awaited_until || now.awaited_until);
}

Known_offer_list::const_iterator place_of(Known_offer_list const& offers, std::optional<Known_offer> const& wanted) {
    return std::find_if(offers.begin(), offers.end(),
                        [&](auto const& offer) { return wanted && is_same(offer, *wanted); });
}

// Whoever is heard is better than who is awaited, and the newest of these is best.
bool is_worse(Known_offer const& left, Known_offer const& right) {
    bool const left_is_heard = !left.awaited_until;
    bool const right_is_heard = !right.awaited_until;
    return std::tie(left_is_heard, left.since) < std::tie(right_is_heard, right.since);
}

}  // namespace

Known_offer_list Caller::offers_of_instance(Known_offer_list const& offers) const {
    Known_offer_list ours;
    std::copy_if(offers.begin(), offers.end(), std::back_inserter(ours), [this](auto const& offer) {
        return offer.interface_name == type_.name && offer.instance == instance_.ToString();
    });
    return ours;
}

void Caller::offers_changed(Known_offer_list const& offers) {
    auto const ours = offers_of_instance(offers);
    auto const chosen = choose(ours);
    auto path = path_for(chosen);
    Pending_calls::Replies gone;
    {
        base::Lock_guard lock(mutex_);
        gone = follow(ours);
        reached_ = reached_ && chosen && is_same(*server_, *chosen) && !chosen->awaited_until;
        server_ = chosen;
        path_is_used_ = path_is_used_ || chosen;
        if (path && path_) {
            std::swap(path, path_);
        }
        informed_ = true;
        ++version_;
        changed_.notify_all();
    }
    fail_all(gone, std::make_exception_ptr(Service_not_available_exception()));
}

// Calls keep to the server that they have as long as it is heard.
std::optional<Known_offer> Caller::choose(Known_offer_list const& offers) {
    base::Lock_guard lock(mutex_);
    auto const present = place_of(offers, server_);
    if (present != offers.end() && !present->awaited_until) {
        return *present;
    }
    auto const best = std::max_element(offers.begin(), offers.end(), is_worse);
    return best == offers.end() ? std::nullopt : std::make_optional(*best);
}

// Another offer gets a path of its own, and so does a server that is heard again after it was lost: only who serves now
// connects with it, while ends that were known before may be there although nobody listens. Null where the path is
// right as it is, or where there can't be another.
std::shared_ptr<Call_path> Caller::path_for(std::optional<Known_offer> const& offer) {
    {
        base::Lock_guard lock(mutex_);
        if (!offer || !path_is_used_ || !path_ || (server_ && is_as_before(*server_, *offer))) {
            return nullptr;
        }
    }
    try {
        return make_path();
    } catch (Infrastructure_exception const&) {
        return nullptr;
    }
}

// What becomes of the calls that are under way; returns those that fail now.
Pending_calls::Replies Caller::follow(Known_offer_list const& offers) {
    auto const present = place_of(offers, server_);
    if (present == offers.end()) {
        return calls_.take_all();
    }
    if (present->awaited_until && !server_->awaited_until) {
        calls_.lose(*present->awaited_until);
        look_at(*present->awaited_until);
    }
    return {};
}

void Caller::connection_changed() {
    base::Lock_guard lock(mutex_);
    reached_ = false;
    ++version_;
    changed_.notify_all();
}

// Throws when there is none.
void Caller::await_server(Clock::time_point deadline) {
    unsigned seen = 0;
    while (auto const candidate = next_candidate(seen, deadline)) {
        seen = candidate->version;
        if (candidate->path->reaches(candidate->offer.participant)) {
            set_reached(*candidate);
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
        if (informed_ && version_ != seen && !server_->awaited_until) {
            return Candidate{path_, *server_, version_};
        }
        if (changed_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
            throw tarq::com::Timeout_exception("The service could not be reached in time");
        }
    }
    return std::nullopt;
}

// A look that something has overtaken tells nothing any more; there will be another.
void Caller::set_reached(Candidate const& candidate) {
    base::Lock_guard lock(mutex_);
    if (version_ == candidate.version && path_ == candidate.path) {
        reached_ = true;
    }
}

}  // namespace ara::com::dds
