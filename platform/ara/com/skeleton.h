#ifndef ARA_COM_SKELETON_H
#define ARA_COM_SKELETON_H

#include "ara/com/binding.h"
#include "ara/com/instance.h"
#include "ara/com/running_handlers.h"
#include "base/mutex.h"

#include <memory>
#include <vector>

namespace ara::com {

/// A part of a skeleton that comes and goes with its offer.
class Offered_part {
 public:
    virtual ~Offered_part() = default;
    virtual void open(InstanceIdentifier const& instance) = 0;
    virtual void close() = 0;
};

/// Base of the skeletons of all service interfaces: one instance that can be offered and withdrawn, again and again.
///
/// While it is offered, threads of the binding call the methods that the most derived class implements. So its owner
/// withdraws the offer before that class is destroyed; what is still offered then is withdrawn by this base.
class Skeleton {
 public:
    virtual ~Skeleton();
    Skeleton(Skeleton const&) = delete;
    Skeleton& operator=(Skeleton const&) = delete;

    /// Makes the instance known and takes calls. Does nothing when it is offered already. Throws
    /// `tarq::com::Infrastructure_exception`.
    void OfferService();

    /// Withdraws the offer and waits for the handler that runs, except when a handler calls it. Withdraws nothing when
    /// it is not offered, and waits all the same. A new offer may be made meanwhile, and stays.
    void StopOfferService();

 protected:
    /// Throws `tarq::com::Invalid_argument_exception` for another mode than kEvent.
    Skeleton(Service_type const& type, InstanceIdentifier instance, MethodCallProcessingMode mode,
             Request_handler handler);

    /// Names a part of the derived class; it lives as long as the skeleton.
    void add_part(Offered_part& part) { parts_.push_back(&part); }

 private:
    void close_parts();
    std::unique_ptr<Offer> take_offer();

    Service_type const& type_;
    InstanceIdentifier const instance_;
    Running_handlers handlers_;
    Request_handler const handler_;
    std::vector<Offered_part*> parts_;
    base::Mutex mutex_;
    std::unique_ptr<Offer> offer_ GUARDED_BY(mutex_);
};

}  // namespace ara::com

#endif
