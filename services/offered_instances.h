#ifndef SERVICES_OFFERED_INSTANCES_H
#define SERVICES_OFFERED_INSTANCES_H

#include "ara/com/find_service.h"
#include "base/mutex.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace services {

/// The names of all instances of a service that are known after the time. Throws `tarq::com::Infrastructure_exception`.
template <class Proxy>
std::vector<std::string> offered_instances(std::chrono::milliseconds time) {
    struct Seen {
        base::Mutex mutex;
        std::vector<std::string> names GUARDED_BY(mutex);
    } seen;
    auto const lookup = Proxy::StartFindService(
        [&seen](ara::com::ServiceHandleContainer const& found) {
            base::Lock_guard const lock(seen.mutex);
            seen.names.clear();
            for (auto const& offer : found) {
                seen.names.push_back(offer.GetInstanceId().ToString());
            }
        },
        ara::com::InstanceSpecifier("*"));
    std::this_thread::sleep_for(time);  // nobody can say that no further offer is on its way
    Proxy::StopFindService(lookup);
    base::Lock_guard const lock(seen.mutex);
    return seen.names;
}

}  // namespace services

#endif
