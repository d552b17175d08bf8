#ifndef STATEMANAGER_STATE_MANAGER_H
#define STATEMANAGER_STATE_MANAGER_H

#include "ara/exec/application_client.h"
#include "statemanager/config/state_manager_config.h"
#include "statemanager/em_interface_abstract.h"
#include "statemanager/service_handler_interface.h"
#include "statemanager/states/state_interface.h"
#include "statemanager/supervision_manager_interface.h"
#include "statemanager/virtio_interface_abstract.h"

#include <array>
#include <atomic>
#include <memory>

namespace ximo::ap::statemanager {

/// Drives the state machine: one cycle after the other on the caller's thread, each waiting at most one main-function
/// period for a command of the hypervisor.
///
/// `init()` once; when it succeeded `run()`, which returns after a normal shutdown or after `shutdown()`. The
/// configuration is held by reference, and neither it nor anything reached through it is touched by the destructor.
class State_manager {
 public:
    State_manager(config::State_manager_config const& configuration,
                  std::shared_ptr<Service_handler_interface> const& service_handler,
                  std::shared_ptr<Em_interface_abstract> const& execution_management,
                  std::unique_ptr<virtio::Virtio_interface_abstract> virtual_input,
                  std::unique_ptr<phm::Supervision_manager_interface> supervision);

    /// Opens the input devices, builds the states and enters the first one; false when there is no input.
    bool init();

    /// Reports the daemon running, cycles while the run flag is set, and reports it terminating.
    void run();

    /// One cycle.
    void run_cyclic_task();

    /// Asks the loop to end after its current cycle. Any thread and any signal handler may call it.
    void shutdown();

 private:
    void change_state(unsigned next, virtio::Virtio_command command);

    config::State_manager_config const& configuration_;
    std::shared_ptr<Service_handler_interface> service_handler_;
    std::shared_ptr<Em_interface_abstract> execution_management_;
    std::unique_ptr<virtio::Virtio_interface_abstract> virtual_input_;
    std::unique_ptr<phm::Supervision_manager_interface> supervision_;
    ara::exec::ApplicationClient application_client_;
    std::array<std::unique_ptr<states::State_interface>, states::k_stay> states_;
    states::State_id current_{states::k_starting_up};
    std::atomic<bool> running_{false};
};

}  // namespace ximo::ap::statemanager

#endif
