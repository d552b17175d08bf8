#include "ara/com/dds/offers/offer_bounds.h"

#include "ara/com/dds/offers/offer_types.h"
#include "ara/com/instance.h"
#include "ara/log/logging.h"
#include "service_offer.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ara::com::dds {

namespace {

constexpr std::size_t k_most_of_one = 64;
constexpr std::size_t k_most_of_all = 1024;

Guid participant_of(ara_com_ServiceOffer const& offer) {
    Guid participant{};
    static_assert(sizeof offer.participant == sizeof participant);
    std::copy(std::begin(offer.participant), std::end(offer.participant), participant.begin());
    return participant;
}

// Others may offer names that can't be ours.
bool is_understood(ara_com_ServiceOffer const& offer) {
    try {
        InstanceIdentifier const name(offer.instance_name);
        return offer.version == k_mapping_version;
    } catch (tarq::com::Invalid_argument_exception const&) {
        return false;
    }
}

}  // namespace

bool Offer_bounds::admits(ara_com_ServiceOffer const& offer, dds_instance_handle_t writer) {
    if (!is_understood(offer)) {
        return false;
    }
    Key key(participant_of(offer), offer.interface_name, offer.instance_name);
    auto const& [participant, interface_name, instance] = key;
    if (is_own_(participant, interface_name, instance)) {
        return true;
    }
    base::Lock_guard const lock(mutex_);
    if (counted_.count(key) != 0) {
        return true;
    }
    if (!has_room(writer, participant)) {
        return false;
    }
    ++of_writer_[writer];
    counted_.emplace(std::move(key), writer);
    return true;
}

bool Offer_bounds::has_room(dds_instance_handle_t writer, Guid const& participant) {
    auto const known = of_writer_.find(writer);
    if (counted_.size() < k_most_of_all && (known == of_writer_.end() || known->second < k_most_of_one)) {
        return true;
    }
    if (!std::exchange(told_, true)) {
        ara::log::LogWarn() << "There are more than " << k_most_of_one << " offers of a participant or "
                            << k_most_of_all
                            << " in all; the others are left alone. The first of them is of participant "
                            << to_text(participant);
    }
    return false;
}

void Offer_bounds::ended(ara_com_ServiceOffer const& offer) {
    base::Lock_guard const lock(mutex_);
    auto const ended = counted_.find({participant_of(offer), offer.interface_name, offer.instance_name});
    if (ended == counted_.end()) {
        return;
    }
    auto const known = of_writer_.find(ended->second);
    counted_.erase(ended);
    if (--known->second == 0) {
        of_writer_.erase(known);
    }
}

}  // namespace ara::com::dds
