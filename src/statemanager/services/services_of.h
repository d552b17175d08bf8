#ifndef STATEMANAGER_SERVICES_SERVICES_OF_H
#define STATEMANAGER_SERVICES_SERVICES_OF_H

#include <memory>
#include <string>
#include <vector>

namespace ximo::ap::statemanager {

/// A service for each instance, as the service handler takes them. Throws what the service's constructor throws.
template <class Service, class Abstract>
std::vector<std::unique_ptr<Abstract>> services_of(std::vector<std::string> const& instances) {
    std::vector<std::unique_ptr<Abstract>> services;
    services.reserve(instances.size());
    for (auto const& instance : instances) {
        services.push_back(std::make_unique<Service>(instance));
    }
    return services;
}

}  // namespace ximo::ap::statemanager

#endif
