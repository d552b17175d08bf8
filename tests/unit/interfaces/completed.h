#ifndef TESTS_UNIT_INTERFACES_COMPLETED_H
#define TESTS_UNIT_INTERFACES_COMPLETED_H

#include "ximo/com/future.h"

/// The answer of a method that is done when it returns.
inline ximo::com::Future<void> completed() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

#endif
