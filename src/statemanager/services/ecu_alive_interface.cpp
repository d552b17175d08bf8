#include "statemanager/services/ecu_alive_interface.h"

#include "statemanager/services/satisfied_future.h"

namespace ximo::ap::statemanager::services {

namespace {

/// Whom nothing is told.
class Nobody : public Ecu_alive_interface_callback {
 public:
    void ecu_alive_request(std::string const& /*instance_id*/) override {}
    void ecu_alive_release(std::string const& /*instance_id*/) override {}
};

Ecu_alive_interface_callback& or_nobody(Ecu_alive_interface_callback* callback) {
    static Nobody nobody;
    return callback == nullptr ? nobody : *callback;
}

}  // namespace

Ecu_alive_interface::Ecu_alive_interface(std::string const& instance_id, Ecu_alive_interface_callback* callback)
    : StateManagementAliveInterfaceSkeleton(ara::com::InstanceIdentifier(instance_id),
                                            ara::com::MethodCallProcessingMode::kEvent),
      callback_(or_nobody(callback)),
      instance_id_(instance_id) {}

// No call comes in while the members go.
Ecu_alive_interface::~Ecu_alive_interface() {
    StopOfferService();
}

ximo::com::Future<void> Ecu_alive_interface::ReleaseAlive() {
    keeps_ecu_alive_ = false;
    callback_.ecu_alive_release(instance_id_);
    return promise_release_alive();
}

ximo::com::Future<void> Ecu_alive_interface::RequestAlive() {
    keeps_ecu_alive_ = true;
    callback_.ecu_alive_request(instance_id_);
    return promise_request_alive();
}

bool Ecu_alive_interface::app_keeps_ecu_alive() const {
    return keeps_ecu_alive_;
}

std::string const& Ecu_alive_interface::get_instance_id() const {
    return instance_id_;
}

ximo::com::Future<void> Ecu_alive_interface::promise_request_alive() {
    return satisfied_future();
}

ximo::com::Future<void> Ecu_alive_interface::promise_release_alive() {
    return satisfied_future();
}

}  // namespace ximo::ap::statemanager::services
