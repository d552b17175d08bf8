#include "statemanager/virtio/virtio_interface.h"

#include "ara/log/logging.h"
#include "base/system_error.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>

namespace ximo::ap::statemanager::virtio {

namespace {

int clamp_to_int(unsigned int timeout_ms) {
    constexpr auto longest = static_cast<unsigned int>(std::numeric_limits<int>::max());
    return static_cast<int>(std::min(timeout_ms, longest));
}

// The reason is taken before the message is begun, which may itself make system calls.
void log_failure(char const* what) {
    std::string const reason = base::system_error_text(errno);
    ara::log::LogError() << what << reason;
}

constexpr char const* k_close_failure = "Failed to close event file descriptor! ";

}  // namespace

Virtio_interface::Virtio_interface(Input_system& system) : system_(system) {
    devices_.fill(k_closed);
}

// Closes every slot, the closed ones too, and says so whenever the outcome (1 failed, 0 closed) differs from the
// descriptor's number, which is nearly always. The error is reset first, so that the line of a descriptor that did
// close reads "Success" and not the reason of an older failure.
Virtio_interface::~Virtio_interface() {
    for (int const device : devices_) {
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

Virtio_command Virtio_interface::get_command(unsigned int timeout_ms) {
    check_for_commands(timeout_ms);
    return queue_.empty() ? Virtio_command::none : queue_.front();
}

void Virtio_interface::command_consumed() {
    if (queue_.empty()) {
        return;
    }
    queue_.pop_front();
    ara::log::LogInfo() << "Consumed VirtIO command: " << toString(last_command_);
}

// The record lives for one wait: it starts empty and is not emptied between the events, so that a failed or short read
// evaluates what the read before it has left.
void Virtio_interface::check_for_commands(unsigned int timeout_ms) {
    if (device_count_ == 0) {
        return;
    }
    ara::log::LogDebug() << "Epoll_wait start";
    Epoll_events events{};
    int const count = system_.wait(epoll_, events, clamp_to_int(timeout_ms));
    ara::log::LogDebug() << "Epoll_wait returned: " << count;
    Input_record_bytes record{};
    for (int i = 0; i < count; ++i) {
        handle_event(events.at(static_cast<std::size_t>(i)), record);
    }
}

void Virtio_interface::handle_event(epoll_event const& event, Input_record_bytes& record) {
    std::uint32_t const flags = event.events;
    if ((flags & EPOLLIN) != 0) {
        read_event(event.data.fd, record);
    } else if ((flags & (EPOLLERR | EPOLLHUP)) != 0) {
        drop_device(event.data.fd);
    }
}

void Virtio_interface::read_event(int descriptor, Input_record_bytes& record) {
    ssize_t const count = system_.read_record(descriptor, record);
    ara::log::LogDebug() << "Readed bytes: " << static_cast<std::int64_t>(count);
    if (count < 0) {
        ara::log::LogError() << "Reading virtual input event failed";
    }
    evaluate(decode_input_record(record));
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
    }
    add_command(*command);
}

void Virtio_interface::drop_device(int descriptor) {
    if (system_.close_descriptor(descriptor) != 0) {
        log_failure(k_close_failure);
    }
    auto const slot = std::find(devices_.begin(), devices_.end(), descriptor);
    if (slot != devices_.end()) {
        *slot = k_closed;
    }
    unslotted_.erase(std::remove(unslotted_.begin(), unslotted_.end(), descriptor), unslotted_.end());
    --device_count_;
}

void Virtio_interface::add_command(Virtio_command command) {
    if (command == last_command_) {
        return;
    }
    last_command_ = command;
    ara::log::LogInfo() << "New command received" << toString(command);
    queue_.push_back(command);
}

}  // namespace ximo::ap::statemanager::virtio
