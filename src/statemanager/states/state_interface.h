#ifndef STATEMANAGER_STATES_STATE_INTERFACE_H
#define STATEMANAGER_STATES_STATE_INTERFACE_H

#include "statemanager/virtio_command.h"

#include <cstdint>
#include <memory>
#include <string>

namespace ximo::ap::statemanager::smw {
class Shared_memory_update;
}

namespace ximo::ap::statemanager::states {

/// The states of the machine's power life; the numbers index the driver's array.
enum State_id : std::uint32_t {
    k_starting_up = 0,
    k_running = 1,
    k_nm_controlled = 2,
    k_post_run = 3,
    k_shutting_down = 4,
    k_preparing = 5,
    k_prepared_sd = 6,
    k_resuming = 7,
    k_stay = 8,  ///< no transition
};

/// The state that a transition to `id` leads to: an id that no state has leads to shutting down.
constexpr State_id state_of(unsigned id) {
    return id < k_stay ? static_cast<State_id>(id) : k_shutting_down;
}

/// One state of the machine.
///
/// The driver calls `entering_state()` when the state becomes the current one, then in each cycle `check_transition()`
/// with the command that waits, and `tick()` in each cycle in which the answer is `k_stay`. Everything runs on the
/// driver's thread.
class State_interface {
 public:
    State_interface(std::shared_ptr<smw::Shared_memory_update> const& shared_memory, std::string const& name);
    virtual ~State_interface() = default;
    State_interface(State_interface const&) = delete;
    State_interface& operator=(State_interface const&) = delete;

    virtual bool entering_state() { return true; }
    virtual void tick() {}
    virtual bool exiting_state() { return true; }  ///< the driver does not call it

    /// The id of the state to go to, or `k_stay`.
    virtual unsigned check_transition(virtio::Virtio_command const& command);

    /// Whether the machine is being powered off by the fast path.
    virtual bool is_forced_shutdown() { return false; }

    std::string get_name() const { return name_; }

    /// The network phase was entered in order to suspend, not to power off.
    static bool get_prepare_SD_flag() { return runtime_config.prepare_sd; }
    static void set_prepare_SD_flag(bool value) { runtime_config.prepare_sd = value; }

    /// Power-off was requested while suspended.
    static bool get_forced_shutdown_flag() { return runtime_config.forced_shutdown; }
    static void set_forced_shutdown_flag(bool value) { runtime_config.forced_shutdown = value; }

 protected:
    /// Writes one of the state words, `report(&smw::Shared_memory_update::running)`.
    void report(void (smw::Shared_memory_update::*state_word)());

    /// Logs why a transition is due and names its target.
    static unsigned transition(State_id target, char const* reason);

    /// The same for a transition that ends the network phase and its intention to suspend.
    static unsigned transition_clearing_prepare_SD(State_id target, char const* reason);

 private:
    struct Runtime_config {
        bool prepare_sd{false};
        bool forced_shutdown{false};
    };
    static Runtime_config runtime_config;  ///< shared by all states, for the process's life

    std::shared_ptr<smw::Shared_memory_update> shared_memory_;
    std::string name_;
};

}  // namespace ximo::ap::statemanager::states

#endif
