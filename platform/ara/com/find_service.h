#ifndef ARA_COM_FIND_SERVICE_H
#define ARA_COM_FIND_SERVICE_H

#include "ara/com/instance.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ara::com {

class Lookup;

/// One offered instance, as a lookup reports it. Plain data: it stays valid when the offer goes.
class ServiceHandle {
 public:
    ServiceHandle(std::string interface_name, InstanceIdentifier instance, std::string participant,
                  std::chrono::system_clock::time_point offer_time = {})
        : interface_(std::move(interface_name)),
          instance_(std::move(instance)),
          participant_(std::move(participant)),
          offer_time_(offer_time) {}

    std::string const& GetInterfaceName() const noexcept { return interface_; }
    InstanceIdentifier const& GetInstanceId() const noexcept { return instance_; }
    /// Who offers it; another text for each start of a process.
    std::string const& GetParticipant() const noexcept { return participant_; }
    /// Since when, by the offering process's clock.
    std::chrono::system_clock::time_point GetOfferTime() const noexcept { return offer_time_; }

 private:
    std::string interface_;
    InstanceIdentifier instance_;
    std::string participant_;
    std::chrono::system_clock::time_point offer_time_;
};

/// In order of the instances' names.
using ServiceHandleContainer = std::vector<ServiceHandle>;

/// Called on a thread of the binding with all instances that are offered, first at once (with an empty list when
/// nothing is known yet) and again on every change. Calls for one lookup come one after the other. It may block, call
/// services and stop its own lookup. When it throws a `tarq::com::Infrastructure_exception` or `std::bad_alloc` it is
/// called again half a second later, with what is offered then.
using FindServiceHandler = std::function<void(ServiceHandleContainer)>;

/// Names a running lookup; copies name the same one. A lookup runs until it is stopped, whether or not its handle is
/// kept.
class FindServiceHandle {
 public:
    explicit FindServiceHandle(std::shared_ptr<Lookup> lookup) : lookup_(std::move(lookup)) {}
    std::shared_ptr<Lookup> const& lookup() const noexcept { return lookup_; }

 private:
    std::shared_ptr<Lookup> lookup_;
};

/// The same with the lookup's own handle, by which it is stopped from within.
using FindServiceHandlerWithHandle = std::function<void(ServiceHandleContainer, FindServiceHandle)>;

}  // namespace ara::com

#endif
