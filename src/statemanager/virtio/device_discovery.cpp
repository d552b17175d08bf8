// The part of Virtio_interface that runs once: finding, opening and registering the input devices.

#include "ara/log/logging.h"
#include "base/system_error.h"
#include "statemanager/virtio/virtio_interface.h"

#include <cerrno>
#include <string_view>

#include <linux/input-event-codes.h>

namespace ximo::ap::statemanager::virtio {

namespace {

constexpr std::string_view k_device_prefix = "event";
constexpr unsigned long k_key_capable = 1UL << EV_KEY;

bool is_event_device(std::string const& name) {
    return name.compare(0, k_device_prefix.size(), k_device_prefix) == 0;
}

}  // namespace

bool Virtio_interface::init(std::string device_directory) {
    if (initialised_) {
        ara::log::LogVerbose() << "VirtIO interface already initialized";
        return false;
    }
    ara::log::LogVerbose() << "Initialization of VirtIO";
    forget_devices();
    auto const names = system_.list_directory(device_directory);
    if (!names) {
        ara::log::LogError() << "Virtio device input folder \"" << device_directory << "\"not found";
        return false;
    }
    epoll_ = system_.create_epoll();
    if (epoll_ == k_closed) {
        std::string const reason = base::system_error_text(errno);
        ara::log::LogError() << "Failed to create epoll file descriptor! " << reason;
        return false;
    }
    ara::log::LogInfo() << "Adding devices from directory: " << device_directory;
    bool const all_usable = add_devices(device_directory, *names);
    if (device_count_ == 0) {
        ara::log::LogError() << "No key event input device found that supports both EV_KEY and EV_MSC";
        return false;
    }
    initialised_ = all_usable;
    return all_usable;
}

// Gives back what an earlier, failed attempt has left: its devices are found again, under a new epoll instance.
void Virtio_interface::forget_devices() {
    for (int& device : devices_) {
        if (device != k_closed) {
            system_.close_descriptor(device);
        }
        device = k_closed;
    }
    for (int const device : unslotted_) {
        system_.close_descriptor(device);
    }
    unslotted_.clear();
    if (epoll_ != k_closed) {
        system_.close_descriptor(epoll_);
    }
    epoll_ = k_closed;
    device_count_ = 0;
}

bool Virtio_interface::add_devices(std::string const& directory, std::vector<std::string> const& names) {
    std::string const parent = directory + "/";
    bool all_usable = true;
    for (std::string const& name : names) {
        if (is_event_device(name)) {
            all_usable = add_device(parent + name) && all_usable;
        }
    }
    return all_usable;
}

// A device that can't send keys is none of ours and no failure; its descriptor stays open.
bool Virtio_interface::add_device(std::string const& path) {
    int const descriptor = system_.open_device(path);
    if (descriptor < 0) {
        ara::log::LogError() << "Can't open VirtIO input device: " << path;
        return false;
    }
    ara::log::LogVerbose() << "Open VirtIO input device: " << path;
    if ((static_cast<unsigned long>(event_types(system_, descriptor)) & k_key_capable) == 0) {
        unslotted_.push_back(descriptor);
        return true;
    }
    return register_device(descriptor);
}

bool Virtio_interface::register_device(int descriptor) {
    if (system_.watch(epoll_, descriptor) != 0) {
        ara::log::LogError() << "Can't add input device to epoll! epoll_ctl failed!";
        system_.close_descriptor(descriptor);
        return false;
    }
    ++device_count_;
    auto const slot = static_cast<std::size_t>(device_count_);
    if (slot < devices_.size()) {
        devices_.at(slot) = descriptor;
    } else {
        unslotted_.push_back(descriptor);
    }
    return true;
}

long Virtio_interface::supported_event_types(int descriptor) {
    return event_types(linux_input_system(), descriptor);
}

long Virtio_interface::event_types(Input_system& system, int descriptor) {
    std::uint64_t types = 0;
    bool const failed = system.read_event_types(descriptor, types) < 0;
    return failed ? 0 : static_cast<long>(types);
}

}  // namespace ximo::ap::statemanager::virtio
