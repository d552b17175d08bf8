#include "scripted_devices.h"

#include <algorithm>
#include <cerrno>
#include <set>

namespace fuzz {

namespace {

constexpr int k_devices = 7;
constexpr int k_epoll = 50;
constexpr int k_first_device = 100;

}  // namespace

std::optional<std::vector<std::string>> Scripted_devices::list_directory(std::string const& /*directory*/) {
    return std::vector<std::string>(k_devices, "event");
}

int Scripted_devices::open_device(std::string const& /*path*/) {
    return k_first_device + static_cast<int>(watched_.size());
}

int Scripted_devices::read_event_types(int /*device*/, std::uint64_t& types) {
    types = 0b11;
    return 0;
}

int Scripted_devices::create_epoll() {
    return k_epoll;
}

int Scripted_devices::watch(int /*epoll*/, int device) {
    watched_.push_back(device);
    return 0;
}

int Scripted_devices::wait(int /*epoll*/, virtio::Epoll_events& events, int /*timeout_ms*/) {
    std::size_t const wanted = next() % (events.size() + 1);
    std::set<int> reported;
    std::size_t count = 0;
    for (std::size_t i = 0; i < wanted && !watched_.empty(); ++i) {
        epoll_event const event = next_event();
        if (reported.insert(event.data.fd).second) {  // epoll reports a descriptor once
            events.at(count) = event;
            ++count;
        }
    }
    return static_cast<int>(count);
}

epoll_event Scripted_devices::next_event() {
    static constexpr std::uint32_t k_kinds[] = {EPOLLIN,  EPOLLIN,  EPOLLIN | EPOLLHUP, EPOLLIN | EPOLLERR,
                                                EPOLLHUP, EPOLLERR, EPOLLPRI,           0};
    epoll_event event{};
    event.data.fd = watched_.at(next() % watched_.size());
    event.events = k_kinds[next() % 8];
    return event;
}

ssize_t Scripted_devices::read_record(int /*device*/, virtio::Input_record_bytes& record) {
    std::uint8_t const kind = next();
    if (kind == 0xFF) {
        errno = EIO;
        return -1;
    }
    std::size_t const length = kind < 0xE0 ? record.size() : kind % (record.size() + 1);
    std::generate_n(record.begin(), length, [this] { return next(); });
    return static_cast<ssize_t>(length);
}

int Scripted_devices::close_descriptor(int descriptor) {
    watched_.erase(std::remove(watched_.begin(), watched_.end(), descriptor), watched_.end());
    return 0;
}

std::uint8_t Scripted_devices::next() {
    if (left_ == 0) {
        return 0;
    }
    --left_;
    return *script_++;
}

}  // namespace fuzz
