#ifndef BENCHMARKS_COMMUNICATION_FOUND_H
#define BENCHMARKS_COMMUNICATION_FOUND_H

#include "ara/com/find_service.h"

#include <future>
#include <memory>
#include <string>

namespace benchmarks {

/// A proxy of the instance; waits until it is offered.
template <class Proxy>
std::unique_ptr<Proxy> found(std::string const& instance) {
    std::promise<ara::com::ServiceHandle> found;
    bool is_found = false;
    auto const lookup = Proxy::StartFindService(
        [&](ara::com::ServiceHandleContainer const& handles) {
            if (!handles.empty() && !is_found) {
                is_found = true;
                found.set_value(handles.front());
            }
        },
        ara::com::InstanceSpecifier(instance));
    auto handle = found.get_future().get();
    Proxy::StopFindService(lookup);
    return std::make_unique<Proxy>(handle);
}

}  // namespace benchmarks

#endif
