#include "statemanager/services/state_manager_com_alive_interface.h"

#include "statemanager/services/satisfied_future.h"

#include <utility>

namespace ximo::ap::statemanager {

State_manager_com_alive_interface::State_manager_com_alive_interface(std::string const& instance_id)
    : StateManagementComAliveInterfaceSkeleton(ara::com::InstanceIdentifier(instance_id),
                                               ara::com::MethodCallProcessingMode::kEvent),
      instance_id_(instance_id) {}

// No call comes in while the members go.
State_manager_com_alive_interface::~State_manager_com_alive_interface() {
    StopOfferService();
}

ximo::com::Future<void> State_manager_com_alive_interface::ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits) {
    com_alive_release_cb_(cab_bits);
    return promise_release_com_alive_get_future();
}

ximo::com::Future<void> State_manager_com_alive_interface::RequestComAlive(std::vector<std::uint8_t> const& cab_bits,
                                                                           std::uint8_t ac_number) {
    com_alive_request_cb_(cab_bits, ac_number);
    return promise_request_com_alive_get_future();
}

void State_manager_com_alive_interface::set_com_alive_request_cb(
    std::function<void(std::vector<std::uint8_t> const&, std::uint8_t)> cb) {
    com_alive_request_cb_ = std::move(cb);
}

void State_manager_com_alive_interface::set_com_alive_release_cb(
    std::function<void(std::vector<std::uint8_t> const&)> cb) {
    com_alive_release_cb_ = std::move(cb);
}

ximo::com::Future<void> State_manager_com_alive_interface::promise_request_com_alive_get_future() {
    return services::satisfied_future();
}

ximo::com::Future<void> State_manager_com_alive_interface::promise_release_com_alive_get_future() {
    return services::satisfied_future();
}

}  // namespace ximo::ap::statemanager
