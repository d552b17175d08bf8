#include "ara/com/skeleton.h"

#include "tarq/com/exception.h"

#include <utility>

namespace ara::com {

Skeleton::Skeleton(Service_type const& type, InstanceIdentifier instance, MethodCallProcessingMode mode,
                   Request_handler handler)
    : type_(type),
      instance_(std::move(instance)),
      handler_([this, handler = std::move(handler)](void const* request, Reply_sink const& answer) {
          handlers_.run([&] { handler(request, answer); });
      }) {
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
    base::Lock_guard const lock(mutex_);
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

// The parts go before the offer, so that they are never those of a new one.
std::unique_ptr<Offer> Skeleton::take_offer() {
    base::Lock_guard const lock(mutex_);
    if (offer_) {
        close_parts();
    }
    return std::move(offer_);
}

// The handler that is waited for may itself stop the offer, so the mutex is free meanwhile.
void Skeleton::StopOfferService() {
    handlers_.end([this] { take_offer().reset(); });
}

}  // namespace ara::com
