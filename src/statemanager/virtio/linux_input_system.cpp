#include "statemanager/virtio/linux_input_system.h"

#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ximo::ap::statemanager::virtio {

namespace {

// Room hint of epoll_create; the kernel only wants it to be positive.
constexpr int k_epoll_size = 5;

struct Directory_closer {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

std::optional<std::vector<std::string>> Linux_input_system::list_directory(std::string const& directory) {
    std::unique_ptr<DIR, Directory_closer> const open_directory(::opendir(directory.c_str()));
    if (!open_directory) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    while (dirent const* entry = ::readdir(open_directory.get())) {
        names.emplace_back(entry->d_name);
    }
    return names;
}

int Linux_input_system::open_device(std::string const& path) {
    return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

int Linux_input_system::read_event_types(int device, std::uint64_t& types) {
    static_assert(EVIOCGBIT(0, sizeof types) == 0x80084520U, "a device is asked for eight bytes of event types");
    return ::ioctl(device, EVIOCGBIT(0, sizeof types), &types);
}

int Linux_input_system::create_epoll() {
    return ::epoll_create(k_epoll_size);
}

int Linux_input_system::watch(int epoll, int device) {
    epoll_event interest{};
    interest.events = EPOLLIN;
    interest.data.fd = device;
    return ::epoll_ctl(epoll, EPOLL_CTL_ADD, device, &interest);
}

int Linux_input_system::wait(int epoll, Epoll_events& events, int timeout_ms) {
    return ::epoll_wait(epoll, events.data(), static_cast<int>(events.size()), timeout_ms);
}

ssize_t Linux_input_system::read_record(int device, Input_record_bytes& record) {
    return ::read(device, record.data(), record.size());
}

int Linux_input_system::close_descriptor(int descriptor) {
    return ::close(descriptor);
}

Linux_input_system& linux_input_system() {
    static auto* const system = new Linux_input_system;
    return *system;
}

}  // namespace ximo::ap::statemanager::virtio
