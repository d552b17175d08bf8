#include "ara/com/dds/calls/server_in_reach.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace ara::com::dds {

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

// Whoever is heard is better than who is awaited, and of these who was found last: a server that has died was found
// before the one that took its place. The clocks count among those alone that were there before.
bool is_worse(Known_offer const& left, Known_offer const& right) {
    auto const rank = [](auto const& offer) { return std::make_tuple(!offer.awaited_until, offer.found, offer.since); };
    return rank(left) < rank(right);
}

}  // namespace

std::shared_ptr<Call_path> Server_in_reach::close() {
    reached_ = false;
    return std::move(path_);
}

// Calls keep to the server that they have as long as it is heard.
std::optional<Known_offer> Server_in_reach::choose(Known_offer_list const& offers) const {
    auto const present = place_of(offers, server_);
    if (present != offers.end() && !present->awaited_until) {
        return *present;
    }
    auto const best = std::max_element(offers.begin(), offers.end(), is_worse);
    return best == offers.end() ? std::nullopt : std::make_optional(*best);
}

// Another offer gets a path of its own, and so does a server that is heard again after it was lost: only who serves now
// connects with it, while ends that were known before may be there although nobody listens.
bool Server_in_reach::needs_new_path(Known_offer_list const& offers) const {
    auto const chosen = choose(offers);
    return chosen && path_is_used_ && path_ && !(server_ && is_as_before(*server_, *chosen));
}

Server_in_reach::Loss Server_in_reach::follow(Known_offer_list const& offers, std::shared_ptr<Call_path>& path) {
    auto const present = place_of(offers, server_);
    Loss loss{present == offers.end(), std::nullopt};
    if (!loss.is_final && present->awaited_until && !server_->awaited_until) {
        loss.awaited_until = present->awaited_until;
    }
    auto const chosen = choose(offers);
    reached_ = reached_ && chosen && is_same(*server_, *chosen) && !chosen->awaited_until;
    server_ = chosen;
    path_is_used_ = path_is_used_ || chosen;
    if (path && path_) {
        std::swap(path, path_);
    }
    informed_ = true;
    ++version_;
    return loss;
}

void Server_in_reach::connection_changed() {
    reached_ = false;
    ++version_;
}

std::optional<Server_in_reach::Candidate> Server_in_reach::candidate(unsigned seen) const {
    if (!path_ || !server_ || server_->awaited_until || version_ == seen) {
        return std::nullopt;
    }
    return Candidate{path_, *server_, version_};
}

void Server_in_reach::set_reached(Candidate const& candidate) {
    if (version_ == candidate.version && path_ == candidate.path) {
        reached_ = true;
    }
}

}  // namespace ara::com::dds
