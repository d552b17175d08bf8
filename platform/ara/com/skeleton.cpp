#include "ara/com/skeleton.h"

#include "tarq/com/exception.h"

#include <utility>

namespace ara::com {

Skeleton::Skeleton(Service_type const& type, InstanceIdentifier instance, MethodCallProcessingMode mode,
                   Request_handler handler)
    : type_(type), instance_(std::move(instance)), handler_(std::move(handler)) {
    if (mode != MethodCallProcessingMode::kEvent) {
        throw tarq::com::Invalid_argument_exception("Not a supported processing mode: only kEvent is");
    }
}

Skeleton::~Skeleton() {
    // The parts belong to the derived class and are gone.
    parts_.clear();
    StopOfferService();
}

void Skeleton::OfferService() {
    base::Lock_guard lock(mutex_);
    if (offer_) {
        return;
    }
    try {
        for (auto* part : parts_) {
            part->open(instance_);
        }
        offer_ = binding()->offer(type_, instance_, handler_);
    } catch (tarq::com::Infrastructure_exception const&) {
        close_parts();
        throw;
    }
}

void Skeleton::close_parts() {
    for (auto* part : parts_) {
        part->close();
    }
}

// The handler that is waited for may itself stop the offer, so the mutex is free meanwhile.
void Skeleton::StopOfferService() {
    std::unique_ptr<Offer> offer;
    {
        base::Lock_guard lock(mutex_);
        offer = std::move(offer_);
    }
    if (!offer) {
        return;
    }
    offer.reset();
    close_parts();
}

}  // namespace ara::com
