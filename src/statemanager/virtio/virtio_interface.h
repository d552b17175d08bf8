#ifndef STATEMANAGER_VIRTIO_VIRTIO_INTERFACE_H
#define STATEMANAGER_VIRTIO_VIRTIO_INTERFACE_H

#include "statemanager/virtio/input_record.h"
#include "statemanager/virtio/input_system.h"
#include "statemanager/virtio/linux_input_system.h"
#include "statemanager/virtio_interface_abstract.h"

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::virtio {

/// Reads the hypervisor's commands from virtual input devices.
///
/// A key press is a command. `init` opens every device "event..." of a directory that can send keys and watches it;
/// `get_command` waits for presses, turns those that it knows into commands and queues them, oldest first. A command
/// equal to the one accepted last is dropped, so that a repeated key changes nothing; the power key overtakes
/// everything that waits. No operation throws; failures are logged. All calls come from one thread.
class Virtio_interface final : public Virtio_interface_abstract {
 public:
    /// `system` must outlive this object.
    explicit Virtio_interface(Input_system& system = linux_input_system());
    ~Virtio_interface() override;

    /// True when each device found could be used and there is at least one. After a failure it may be called again
    /// and starts anew; after a success it does nothing and returns false.
    bool init(std::string device_directory) override;

    /// Doesn't wait when no device is (or is left) registered.
    Virtio_command get_command(unsigned int timeout_ms) override;

    void command_consumed() override;

    /// Waits up to `timeout_ms` milliseconds for input and queues the commands that came, one record for each device
    /// that has some. A time above what epoll takes (INT_MAX) is cut to that.
    void check_for_commands(unsigned int timeout_ms);

    /// Queues a command unless it equals the one queued last.
    void add_command(Virtio_command command);

    /// The event types that a device can send, bit k for type k; 0 when it can't tell.
    static long supported_event_types(int descriptor);

 private:
    static constexpr int k_closed = -1;
    static constexpr std::size_t k_slots = 5;

    static long event_types(Input_system& system, int descriptor);
    void forget_devices();
    bool add_devices(std::string const& directory, std::vector<std::string> const& names);
    bool add_device(std::string const& path);
    bool register_device(int descriptor);
    void handle_event(epoll_event const& event, Input_record_bytes& record);
    void read_event(int descriptor, Input_record_bytes& record);
    void evaluate(Input_record const& record);
    void drop_device(int descriptor);

    Input_system& system_;
    int device_count_ = 0;  ///< registered with epoll; may exceed the number of slots
    int epoll_ = k_closed;
    std::array<int, k_slots> devices_;  ///< the n-th registered device is in slot n, so slot 0 stays closed
    std::vector<int> unslotted_;        ///< open as well: those that can't send keys, and those beyond the slots
    std::deque<Virtio_command> queue_;
    Virtio_command last_command_ = Virtio_command::none;  ///< accepted last; consuming doesn't reset it
    bool initialised_ = false;
};

}  // namespace ximo::ap::statemanager::virtio

#endif
