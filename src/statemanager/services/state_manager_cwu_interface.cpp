#include "statemanager/services/state_manager_cwu_interface.h"

#include "statemanager/services/satisfied_future.h"

#include <utility>

namespace ximo::ap::statemanager {

State_manager_cwu_interface::State_manager_cwu_interface(std::string const& instance_id)
    : StateManagementCWUInterfaceSkeleton(ara::com::InstanceIdentifier(instance_id),
                                          ara::com::MethodCallProcessingMode::kEvent),
      instance_id_(instance_id) {}

// No call comes in while the members go.
State_manager_cwu_interface::~State_manager_cwu_interface() {
    StopOfferService();
}

ximo::com::Future<void> State_manager_cwu_interface::ReleaseCarWakeUp() {
    cwu_release_cb_();
    return promise_release_cwu_get_future();
}

ximo::com::Future<void> State_manager_cwu_interface::RequestCarWakeUp(std::uint8_t ac_number) {
    cwu_request_cb_(ac_number);
    return promise_request_cwu_get_future();
}

void State_manager_cwu_interface::set_cwu_request_cb(std::function<void(std::uint8_t)> cb) {
    cwu_request_cb_ = std::move(cb);
}

void State_manager_cwu_interface::set_cwu_release_cb(std::function<void()> cb) {
    cwu_release_cb_ = std::move(cb);
}

ximo::com::Future<void> State_manager_cwu_interface::promise_request_cwu_get_future() {
    return services::satisfied_future();
}

ximo::com::Future<void> State_manager_cwu_interface::promise_release_cwu_get_future() {
    return services::satisfied_future();
}

}  // namespace ximo::ap::statemanager
