#ifndef TESTS_UNIT_SERVICES_SERVICE_TEST_H
#define TESTS_UNIT_SERVICES_SERVICE_TEST_H

#include "support/fake_binding.h"
#include "support/log_capture.h"
#include "tarq/com/exception.h"
#include "ximo/com/future.h"

#include <chrono>
#include <string>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager {

using testing::ElementsAre;
using testing::IsEmpty;

/// Whether an answer is there already, and a success.
inline bool succeeded(ximo::com::Future<void> answer) {
    bool const ready = answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    answer.get();
    return ready;
}

/// An application's way to an instance.
template <class Proxy>
Proxy client(std::string const& interface_name, std::string const& instance) {
    return Proxy(ara::com::ServiceHandle(interface_name, ara::com::InstanceIdentifier(instance), ""));
}

}  // namespace ximo::ap::statemanager

#endif
