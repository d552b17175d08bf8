#ifndef STATEMANAGER_VIRTIO_INPUT_DEVICES_H
#define STATEMANAGER_VIRTIO_INPUT_DEVICES_H

#include "statemanager/virtio/input_record.h"
#include "statemanager/virtio/input_system.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ximo::ap::statemanager::virtio {

/// The input devices of a directory: found, opened, watched for input, dropped when they fail, and closed at the end.
/// A device that can't send keys is opened as well, and not watched. No operation throws, failures are logged; one
/// thread.
class Input_devices {
 public:
    using Handler = std::function<void(Input_record const& record)>;

    /// `system` must outlive this object.
    explicit Input_devices(Input_system& system) : system_(system) { slots_.fill(k_closed); }
    ~Input_devices();
    Input_devices(Input_devices const&) = delete;
    Input_devices& operator=(Input_devices const&) = delete;

    /// Begins anew with every device "event..." of the directory. True when each could be used and there is at least
    /// one that can send keys.
    bool open(std::string const& directory);

    /// Waits up to `timeout_ms` milliseconds for input, and hands out one record for each device that has some. A time
    /// above what epoll takes (INT_MAX) is cut to that. Doesn't wait when no device is watched.
    void wait(unsigned int timeout_ms, Handler const& handler);

    /// The event types that a device can send, bit k for type k; 0 when it can't tell.
    static long event_types(Input_system& system, int descriptor);

 private:
    static constexpr int k_closed = -1;
    static constexpr std::size_t k_slots = 5;

    void forget();
    bool add_all(std::string const& directory, std::vector<std::string> const& names);
    bool add(std::string const& path);
    bool watch(int descriptor);
    void handle_event(epoll_event const& event, Input_record_bytes& record, Handler const& handler);
    void read_event(int descriptor, Input_record_bytes& record, Handler const& handler);
    void drop(int descriptor);

    Input_system& system_;
    int count_{0};  ///< of those that are watched; may exceed the number of slots
    int epoll_{k_closed};
    std::array<int, k_slots> slots_;  ///< the n-th watched device is in slot n, so slot 0 stays closed
    std::vector<int> unslotted_;      ///< open as well: those that can't send keys, and those beyond the slots
};

}  // namespace ximo::ap::statemanager::virtio

#endif
