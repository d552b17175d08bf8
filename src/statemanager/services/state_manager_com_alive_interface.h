#ifndef STATEMANAGER_SERVICES_STATE_MANAGER_COM_ALIVE_INTERFACE_H
#define STATEMANAGER_SERVICES_STATE_MANAGER_COM_ALIVE_INTERFACE_H

#include "statemanager/services/state_manager_com_alive_interface_abstract.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"

namespace ximo::ap::statemanager {

/// One application's COM-alive service: hands each call to the owner's callback and answers at once.
///
/// Throws `tarq::com::Invalid_argument_exception` for a string that is no instance.
class State_manager_com_alive_interface : public State_manager_com_alive_interface_abstract,
                                          public skeleton::StateManagementComAliveInterfaceSkeleton {
 public:
    explicit State_manager_com_alive_interface(std::string const& instance_id);
    ~State_manager_com_alive_interface() override;

    ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& cab_bits) override;
    ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& cab_bits, std::uint8_t ac_number) override;
    std::string const& get_instance_id() const override { return instance_id_; }
    void set_com_alive_request_cb(std::function<void(std::vector<std::uint8_t> const&, std::uint8_t)> cb) override;
    void set_com_alive_release_cb(std::function<void(std::vector<std::uint8_t> const&)> cb) override;
    ximo::com::Future<void> promise_request_com_alive_get_future() override;
    ximo::com::Future<void> promise_release_com_alive_get_future() override;
    void offer() override { OfferService(); }
    void stop_offer() override { StopOfferService(); }

 private:
    std::string const instance_id_;
    std::function<void(std::vector<std::uint8_t> const&, std::uint8_t)> com_alive_request_cb_;
    std::function<void(std::vector<std::uint8_t> const&)> com_alive_release_cb_;
};

}  // namespace ximo::ap::statemanager

#endif
