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
void put(std::string const& text, char (&place)[size]) {
    auto const length = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), length, place);
}

ara_com_ServiceOffer make_offer(Guid const& participant, std::string const& interface_name,
                                std::string const& instance) {
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
    base::Lock_guard lock(mutex_);
    if (!writer_) {
        writer_ = std::make_shared<Writer>(participant_, Channel{offer_topic(), {}}, offer_quality());
    }
    return writer_;
}

void Announcer::claim(std::string const& interface_name, std::string const& instance) {
    base::Lock_guard lock(claims_mutex_);
    while (withdrawing_.count({interface_name, instance}) != 0) {
        withdrawn_.wait(claims_mutex_);
    }
    if (!claimed_.emplace(interface_name, instance).second) {
        throw tarq::com::Infrastructure_exception("This process offers the instance already: " + instance);
    }
}

bool Announcer::claims(std::string const& interface_name, std::string const& instance) {
    base::Lock_guard lock(claims_mutex_);
    return claimed_.count({interface_name, instance}) != 0;
}

void Announcer::announce(std::string const& interface_name, std::string const& instance) {
    auto const offer = make_offer(participant_.identity(), interface_name, instance);
    writer()->write(&offer);
}

// The claim goes last, so that a new offer of the instance is not withdrawn.
void Announcer::withdraw(std::string const& interface_name, std::string const& instance) noexcept {
    std::shared_ptr<Writer> writer;
    {
        base::Lock_guard lock(mutex_);
        writer = writer_;
    }
    {
        base::Lock_guard lock(claims_mutex_);
        withdrawing_.emplace(interface_name, instance);
    }
    if (writer) {
        auto const offer = make_offer(participant_.identity(), interface_name, instance);
        dds_dispose(writer->entity(), &offer);
        dds_unregister_instance(writer->entity(), &offer);
    }
    base::Lock_guard lock(claims_mutex_);
    claimed_.erase({interface_name, instance});
    withdrawing_.erase({interface_name, instance});
    withdrawn_.notify_all();
}

}  // namespace ara::com::dds
