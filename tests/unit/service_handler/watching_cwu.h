#ifndef TESTS_UNIT_SERVICE_HANDLER_WATCHING_CWU_H
#define TESTS_UNIT_SERVICE_HANDLER_WATCHING_CWU_H

#include "statemanager/service_handler_interface.h"
#include "statemanager/services/state_manager_cwu_interface.h"

#include <optional>
#include <string>

namespace ximo::ap::statemanager {

/// Notes whether network management is available when the service is offered, and counts withdrawals.
class Watching_cwu : public State_manager_cwu_interface {
 public:
    explicit Watching_cwu(std::string const& instance) : State_manager_cwu_interface(instance) {}
    void offer() override { available_at_offer = handler->nm_interface_available(); }
    void stop_offer() override { ++withdrawals; }

    Service_handler_interface const* handler{nullptr};
    std::optional<bool> available_at_offer;
    int withdrawals{0};
};

}  // namespace ximo::ap::statemanager

#endif
