#ifndef ARA_COM_FIND_SERVICE_H
#define ARA_COM_FIND_SERVICE_H

#include "ara/com/instance.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace ara::com {

/// An offered instance, as a lookup reports it.
class ServiceHandle {
 public:
    explicit ServiceHandle(InstanceIdentifier instance) : instance_(std::move(instance)) {}
    InstanceIdentifier const& GetInstanceId() const noexcept { return instance_; }

 private:
    InstanceIdentifier instance_;
};

using ServiceHandleContainer = std::vector<ServiceHandle>;
using FindServiceHandler = std::function<void(ServiceHandleContainer)>;

struct Lookup;

/// Names a lookup, which runs until it is stopped.
class FindServiceHandle {
 public:
    explicit FindServiceHandle(std::shared_ptr<Lookup> lookup) : lookup_(std::move(lookup)) {}
    std::shared_ptr<Lookup> const& lookup() const noexcept { return lookup_; }

 private:
    std::shared_ptr<Lookup> lookup_;
};

}  // namespace ara::com

#endif
