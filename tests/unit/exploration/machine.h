#ifndef TESTS_UNIT_EXPLORATION_MACHINE_H
#define TESTS_UNIT_EXPLORATION_MACHINE_H

#include "conditions.h"
#include "driver_log.h"
#include "modelled_clients.h"
#include "point.h"
#include "statemanager/state_manager.h"
#include "statemanager/virtio/virtio_interface.h"
#include "support/fake_input_system.h"
#include "support/fake_neighbours.h"

#include <memory>
#include <optional>
#include <string>

namespace exploration {

/// What a machine shows of one cycle.
struct Cycle {
    Virtio_command head;              ///< the command that it was offered
    std::optional<unsigned> entered;  ///< the state, by the log
    bool was_refused;                 ///< the run loop is over
};

/// The real driver, states, notifier and command queue, started anew, among neighbours that do what they are told.
class Machine {
 public:
    /// How often the post-run state ticks before its time is over.
    static constexpr unsigned k_knockout = 1;

    Machine(bool nm_usage, std::string const& status_file, Driver_log& log);

    void press(Virtio_command key);
    Cycle cycle(std::vector<bool> const& conditions);

    Virtio_command head() { return input_->get_command(0); }
    std::string read_words();  ///< that were written since the last time
    Modelled_clients& clients() { return *clients_; }
    Conditions const& conditions() const { return *conditions_; }
    std::vector<std::string> const& requested_of_execution_management() const { return em_->actions; }

 private:
    void read_log(Cycle& cycle);

    Driver_log& log_;
    ximo::ap::statemanager::config::State_manager_config configuration_;
    test_support::Fake_input_system devices_;
    std::shared_ptr<Conditions> conditions_{std::make_shared<Conditions>()};
    std::shared_ptr<test_support::Fake_execution_management> em_{
        std::make_shared<test_support::Fake_execution_management>()};
    int beats_{0};
    ximo::ap::statemanager::virtio::Virtio_interface* input_;  ///< the driver's
    ximo::ap::statemanager::State_manager driver_;
    Modelled_clients* clients_;  ///< the notifier's
    std::size_t read_{0};        ///< bytes of the status file
};

/// The driver's name of a state.
std::string const& name_of(unsigned state);

}  // namespace exploration

#endif
