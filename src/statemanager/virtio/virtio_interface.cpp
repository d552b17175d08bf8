// The driver's thread calls `init` once, `get_command` in each cycle, which is the loop's only wait, and
// `command_consumed` after a change of the state. A key that comes meanwhile goes through `evaluate` and `add_command`
// into the queue.

#include "statemanager/virtio/virtio_interface.h"

#include "ara/log/logging.h"
#include "statemanager/virtio/input_record.h"
#include "status/driver_status.h"

namespace ximo::ap::statemanager::virtio {

bool Virtio_interface::init(std::string device_directory) {
    if (initialised_) {
        ara::log::LogVerbose() << "VirtIO interface already initialized";
        return false;
    }
    ara::log::LogVerbose() << "Initialization of VirtIO";
    initialised_ = devices_.open(device_directory);
    return initialised_;
}

Virtio_command Virtio_interface::get_command(unsigned int timeout_ms) {
    check_for_commands(timeout_ms);
    return queue_.empty() ? Virtio_command::none : queue_.front();
}

void Virtio_interface::command_consumed() {
    if (queue_.empty()) {
        return;
    }
    queue_.pop_front();
    status::command_consumed();
    ara::log::LogInfo() << "Consumed VirtIO command: " << toString(last_command_);
}

void Virtio_interface::check_for_commands(unsigned int timeout_ms) {
    devices_.wait(timeout_ms, [this](Input_record const& record) { evaluate(record); });
}

void Virtio_interface::evaluate(Input_record const& record) {
    auto const command = command_of(record);
    if (!command) {
        ara::log::LogDebug() << "Unsupported command type received! Type[" << record.type << "] code[" << record.code
                             << "] value[" << record.value << "]";
        return;
    }
    if (*command == Virtio_command::shutdown) {
        queue_.clear();
        status::queue_cleared();
    }
    add_command(*command);
}

void Virtio_interface::add_command(Virtio_command command) {
    if (command == last_command_) {
        status::key_dropped(static_cast<std::uint64_t>(command));
        return;
    }
    last_command_ = command;
    ara::log::LogInfo() << "New command received" << toString(command);
    queue_.push_back(command);
    status::key_taken(static_cast<std::uint64_t>(command));
}

long Virtio_interface::supported_event_types(int descriptor) {
    return Input_devices::event_types(linux_input_system(), descriptor);
}

}  // namespace ximo::ap::statemanager::virtio
