#ifndef STATEMANAGER_SERVICES_STATE_MANAGER_CWU_INTERFACE_H
#define STATEMANAGER_SERVICES_STATE_MANAGER_CWU_INTERFACE_H

#include "statemanager/services/state_manager_cwu_interface_abstract.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_skeleton.h"

namespace ximo::ap::statemanager {

/// One application's car-wake-up service: hands each call to the owner's callback and answers at once.
///
/// Throws `tarq::com::Invalid_argument_exception` for a string that is no instance.
class State_manager_cwu_interface : public State_manager_cwu_interface_abstract,
                                    public skeleton::StateManagementCWUInterfaceSkeleton {
 public:
    explicit State_manager_cwu_interface(std::string const& instance_id);
    ~State_manager_cwu_interface() override;

    ximo::com::Future<void> ReleaseCarWakeUp() override;
    ximo::com::Future<void> RequestCarWakeUp(std::uint8_t ac_number) override;
    std::string const& get_instance_id() const override { return instance_id_; }
    void set_cwu_request_cb(std::function<void(std::uint8_t)> cb) override;
    void set_cwu_release_cb(std::function<void()> cb) override;
    ximo::com::Future<void> promise_request_cwu_get_future() override;
    ximo::com::Future<void> promise_release_cwu_get_future() override;
    void offer() override { OfferService(); }
    void stop_offer() override { StopOfferService(); }

 private:
    std::string const instance_id_;
    std::function<void(std::uint8_t)> cwu_request_cb_;
    std::function<void()> cwu_release_cb_;
};

}  // namespace ximo::ap::statemanager

#endif
