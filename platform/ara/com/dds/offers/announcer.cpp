#include "ara/com/dds/offers/announcer.h"

#include "ara/com/dds/offers/offer_types.h"
#include "ara/com/dds/offers/process_space.h"
#include "service_offer.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <cstddef>

#include <unistd.h>

namespace ara::com::dds {

namespace {

template <std::size_t size>
void put(std::string_view text, char (&place)[size]) {
    auto const length = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), length, place);
}

ara_com_ServiceOffer make_offer(Guid const& participant, std::string_view interface_name, std::string_view instance) {
    static auto const& space = *new std::string(process_space());
    ara_com_ServiceOffer offer{};
    put(interface_name, offer.interface_name);
    put(instance, offer.instance_name);
    std::copy(participant.begin(), participant.end(), offer.participant);
    offer.version = k_mapping_version;
    offer.process = space.empty() ? 0 : getpid();
    put(space, offer.process_space);
    return offer;
}

}  // namespace

std::shared_ptr<Writer> Announcer::writer() {
    base::Lock_guard const lock(mutex_);
    if (!writer_) {
        writer_ = std::make_shared<Writer>(participant_, Channel{offer_topic(), {}}, offer_quality());
    }
    return writer_;
}

Announcer::Claims::iterator Announcer::find(std::string_view interface_name, std::string_view instance) {
    return std::find_if(claims_.begin(), claims_.end(), [&](Claim const& claim) {
        return claim.interface_name == interface_name && claim.instance == instance;
    });
}

void Announcer::claim(std::string_view interface_name, std::string_view instance) {
    base::Lock_guard const lock(claims_mutex_);
    auto claim = find(interface_name, instance);
    while (claim != claims_.end() && claim->is_withdrawn) {
        withdrawn_.wait(claims_mutex_);
        claim = find(interface_name, instance);
    }
    if (claim != claims_.end()) {
        throw tarq::com::Infrastructure_exception("This process offers the instance already: " + claim->instance);
    }
    claims_.push_back({std::string(interface_name), std::string(instance)});
}

bool Announcer::claims(std::string_view interface_name, std::string_view instance) {
    base::Lock_guard const lock(claims_mutex_);
    return find(interface_name, instance) != claims_.end();
}

void Announcer::announce(std::string_view interface_name, std::string_view instance) {
    auto const offer = make_offer(participant_.identity(), interface_name, instance);
    writer()->write(&offer);
}

// The claim goes last, so that a new offer of the instance is not withdrawn.
void Announcer::withdraw(std::string_view interface_name, std::string_view instance) noexcept {
    std::shared_ptr<Writer> writer;
    {
        base::Lock_guard const lock(mutex_);
        writer = writer_;
    }
    {
        base::Lock_guard const lock(claims_mutex_);
        if (auto const claim = find(interface_name, instance); claim != claims_.end()) {
            claim->is_withdrawn = true;
        }
    }
    if (writer) {
        auto const offer = make_offer(participant_.identity(), interface_name, instance);
        dds_dispose(writer->entity(), &offer);
        dds_unregister_instance(writer->entity(), &offer);
    }
    base::Lock_guard const lock(claims_mutex_);
    if (auto const claim = find(interface_name, instance); claim != claims_.end()) {
        claims_.erase(claim);
    }
    withdrawn_.notify_all();
}

}  // namespace ara::com::dds
