#include "statemanager/virtio/input_devices.h"

#include "ara/log/logging.h"
#include "base/system_error.h"
#include "status/driver_status.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string_view>

#include <linux/input-event-codes.h>

namespace ximo::ap::statemanager::virtio {

namespace {

constexpr std::string_view k_device_prefix = "event";
constexpr unsigned long k_key_capable = 1UL << EV_KEY;
constexpr char const* k_close_failure = "Failed to close event file descriptor! ";

bool is_event_device(std::string const& name) {
    return name.compare(0, k_device_prefix.size(), k_device_prefix) == 0;
}

int clamp_to_int(unsigned int timeout_ms) {
    constexpr auto longest = static_cast<unsigned int>(std::numeric_limits<int>::max());
    return static_cast<int>(std::min(timeout_ms, longest));
}

// The reason is taken before the message is begun, which may itself make system calls.
void log_failure(char const* what) {
    std::string const reason = base::system_error_text(errno);
    ara::log::LogError() << what << reason;
}

}  // namespace

// Closes every slot, the closed ones too, and says so whenever the outcome (1 failed, 0 closed) differs from the
// descriptor's number, which is nearly always. The error is reset first, so that the line of a descriptor that did
// close reads "Success" and not the reason of an older failure.
Input_devices::~Input_devices() {
    for (int const device : slots_) {
        errno = 0;
        int const failed = system_.close_descriptor(device) == 0 ? 0 : 1;
        if (failed != device) {
            log_failure(k_close_failure);
        }
    }
    if (epoll_ != k_closed && system_.close_descriptor(epoll_) != 0) {
        log_failure("Failed to close epoll file descriptor! ");
    }
}

bool Input_devices::open(std::string const& directory) {
    forget();
    auto const names = system_.list_directory(directory);
    if (!names) {
        ara::log::LogError() << "Virtio device input folder \"" << directory << "\"not found";
        return false;
    }
    epoll_ = system_.create_epoll();
    if (epoll_ == k_closed) {
        log_failure("Failed to create epoll file descriptor! ");
        return false;
    }
    ara::log::LogInfo() << "Adding devices from directory: " << directory;
    bool const all_usable = add_all(directory, *names);
    status::devices_opened(static_cast<std::uint64_t>(count_));
    if (count_ == 0) {
        ara::log::LogError() << "No key event input device found that supports both EV_KEY and EV_MSC";
        return false;
    }
    return all_usable;
}

// Gives back what an earlier, failed attempt has left: its devices are found again, under a new epoll instance.
void Input_devices::forget() {
    for (int& device : slots_) {
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
    count_ = 0;
}

bool Input_devices::add_all(std::string const& directory, std::vector<std::string> const& names) {
    std::string const parent = directory + "/";
    bool all_usable = true;
    for (std::string const& name : names) {
        if (is_event_device(name)) {
            all_usable = add(parent + name) && all_usable;
        }
    }
    return all_usable;
}

// A device that can't send keys is none of ours and no failure; its descriptor stays open.
bool Input_devices::add(std::string const& path) {
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
    return watch(descriptor);
}

bool Input_devices::watch(int descriptor) {
    if (system_.watch(epoll_, descriptor) != 0) {
        ara::log::LogError() << "Can't add input device to epoll! epoll_ctl failed!";
        system_.close_descriptor(descriptor);
        return false;
    }
    ++count_;
    auto const slot = static_cast<std::size_t>(count_);
    if (slot < slots_.size()) {
        slots_.at(slot) = descriptor;
    } else {
        unslotted_.push_back(descriptor);
    }
    return true;
}

// The record lives for one wait: it starts empty and is not emptied between the events, so that a failed or short read
// hands out what the read before it has left.
void Input_devices::wait(unsigned int timeout_ms, Handler const& handler) {
    if (count_ == 0) {
        return;
    }
    ara::log::LogDebug() << "Epoll_wait start";
    Epoll_events events{};
    int const count = system_.wait(epoll_, events, clamp_to_int(timeout_ms));
    ara::log::LogDebug() << "Epoll_wait returned: " << count;
    Input_record_bytes record{};
    for (int i = 0; i < count; ++i) {
        handle_event(events.at(static_cast<std::size_t>(i)), record, handler);
    }
}

void Input_devices::handle_event(epoll_event const& event, Input_record_bytes& record, Handler const& handler) {
    std::uint32_t const flags = event.events;
    if ((flags & EPOLLIN) != 0) {
        read_event(event.data.fd, record, handler);
    } else if ((flags & (EPOLLERR | EPOLLHUP)) != 0) {
        drop(event.data.fd);
    }
}

void Input_devices::read_event(int descriptor, Input_record_bytes& record, Handler const& handler) {
    ssize_t const count = system_.read_record(descriptor, record);
    ara::log::LogDebug() << "Readed bytes: " << static_cast<std::int64_t>(count);
    if (count < 0) {
        ara::log::LogError() << "Reading virtual input event failed";
    }
    handler(decode_input_record(record));
}

void Input_devices::drop(int descriptor) {
    if (system_.close_descriptor(descriptor) != 0) {
        log_failure(k_close_failure);
    }
    auto const slot = std::find(slots_.begin(), slots_.end(), descriptor);
    if (slot != slots_.end()) {
        *slot = k_closed;
    }
    unslotted_.erase(std::remove(unslotted_.begin(), unslotted_.end(), descriptor), unslotted_.end());
    --count_;
    status::device_lost(static_cast<std::uint64_t>(count_));
}

long Input_devices::event_types(Input_system& system, int descriptor) {
    std::uint64_t types = 0;
    bool const failed = system.read_event_types(descriptor, types) < 0;
    return failed ? 0 : static_cast<long>(types);
}

}  // namespace ximo::ap::statemanager::virtio
