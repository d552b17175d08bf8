#ifndef STATEMANAGER_SERVICES_SATISFIED_FUTURE_H
#define STATEMANAGER_SERVICES_SATISFIED_FUTURE_H

#include "ximo/com/future.h"

namespace ximo::ap::statemanager::services {

/// The answer of every method that has done its work: a future that is ready.
inline ximo::com::Future<void> satisfied_future() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

}  // namespace ximo::ap::statemanager::services

#endif
