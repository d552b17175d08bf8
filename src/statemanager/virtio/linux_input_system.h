#ifndef STATEMANAGER_VIRTIO_LINUX_INPUT_SYSTEM_H
#define STATEMANAGER_VIRTIO_LINUX_INPUT_SYSTEM_H

#include "statemanager/virtio/input_system.h"

#include <string>
#include <vector>

namespace ximo::ap::statemanager::virtio {

/// The real thing: evdev character devices and epoll.
class Linux_input_system final : public Input_system {
 public:
    std::optional<std::vector<std::string>> list_directory(std::string const& directory) override;
    int open_device(std::string const& path) override;
    int read_event_types(int device, std::uint64_t& types) override;
    int create_epoll() override;
    int watch(int epoll, int device) override;
    int wait(int epoll, Epoll_events& events, int timeout_ms) override;
    ssize_t read_record(int device, Input_record_bytes& record) override;
    int close_descriptor(int descriptor) override;
};

/// The one that a process needs. It never dies, because its users may outlive static objects.
Linux_input_system& linux_input_system();

}  // namespace ximo::ap::statemanager::virtio

#endif
