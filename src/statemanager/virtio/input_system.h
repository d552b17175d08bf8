#ifndef STATEMANAGER_VIRTIO_INPUT_SYSTEM_H
#define STATEMANAGER_VIRTIO_INPUT_SYSTEM_H

#include "statemanager/virtio/input_record.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/epoll.h>
#include <sys/types.h>

namespace ximo::ap::statemanager::virtio {

/// How many events one wait can deliver; what is more comes with the next wait.
constexpr std::size_t k_events_per_wait = 5;

using Epoll_events = std::array<epoll_event, k_events_per_wait>;

/// The system calls on input devices. Unless said otherwise each operation returns what its system call returns and
/// leaves the reason of a failure in `errno`.
class Input_system {
 public:
    Input_system() = default;
    virtual ~Input_system() = default;
    Input_system(Input_system const&) = delete;
    Input_system& operator=(Input_system const&) = delete;

    /// The names in a directory in the order in which it lists them; nothing when it can't be opened.
    virtual std::optional<std::vector<std::string>> list_directory(std::string const& directory) = 0;

    /// Opens a device for reading without ever blocking; the descriptor, or -1.
    virtual int open_device(std::string const& path) = 0;

    /// Stores a device's event types, bit k for type k; negative when it can't tell.
    virtual int read_event_types(int device, std::uint64_t& types) = 0;

    virtual int create_epoll() = 0;

    /// From now on a wait reports input on the device, with its descriptor as the event's data.
    virtual int watch(int epoll, int device) = 0;

    /// Waits for at most `timeout_ms` milliseconds; the number of events stored, 0 after the time, negative on failure.
    virtual int wait(int epoll, Epoll_events& events, int timeout_ms) = 0;

    /// Reads one record; the number of bytes stored.
    virtual ssize_t read_record(int device, Input_record_bytes& record) = 0;

    virtual int close_descriptor(int descriptor) = 0;
};

}  // namespace ximo::ap::statemanager::virtio

#endif
