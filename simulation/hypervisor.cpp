#include "simulation/hypervisor.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include <linux/input-event-codes.h>

namespace simulation {

namespace virtio = ximo::ap::statemanager::virtio;

namespace {

constexpr int k_keyboard = 3;
constexpr int k_epoll = 4;
constexpr Time k_moment = std::chrono::milliseconds(1);

constexpr std::array<std::pair<char const*, std::uint16_t>, 5> k_keys{
    {{"r", KEY_R}, {"n", KEY_N}, {"s", KEY_S}, {"p", KEY_P}, {"power", KEY_POWER}}};

virtio::Input_record_bytes record_of(unsigned type, unsigned code, unsigned value) {
    virtio::Input_record_bytes bytes{};
    bytes[16] = static_cast<std::uint8_t>(type);
    bytes[18] = static_cast<std::uint8_t>(code);
    bytes[20] = static_cast<std::uint8_t>(value);
    return bytes;
}

}  // namespace

bool Hypervisor::has_key(std::string const& key) {
    for (auto const& [name, code] : k_keys) {
        if (key == name) {
            return true;
        }
    }
    return false;
}

void Hypervisor::lose_keyboard() {
    unread_.clear();
    is_lost_ = true;
}

void Hypervisor::begin_cycle() {
    if (is_lost_) {
        stage_.events().pass(k_moment);
    }
}

void Hypervisor::press(std::string const& key) {
    if (is_lost_) {
        return stage_.note(Kind::neighbour, "key", key + ", without a keyboard");
    }
    stage_.note(Kind::key, "", key);
    for (auto const& [name, code] : k_keys) {
        if (key == name) {
            for (unsigned const value : {1U, 0U}) {
                unread_.push_back(record_of(EV_KEY, code, value));
                unread_.push_back(record_of(EV_SYN, SYN_REPORT, 0));
            }
        }
    }
}

void Hypervisor::key_down(std::string const& key) {
    stage_.note(Kind::key, "", key);
    for (auto const& [name, code] : k_keys) {
        if (key == name) {
            unread_.push_back(record_of(EV_KEY, code, 1));
        }
    }
}

std::optional<std::vector<std::string>> Hypervisor::list_directory(std::string const& /*directory*/) {
    return std::vector<std::string>{"event0"};
}

int Hypervisor::open_device(std::string const& /*path*/) {
    return k_keyboard;
}

int Hypervisor::read_event_types(int /*device*/, std::uint64_t& types) {
    types = 1U << EV_SYN | 1U << EV_KEY;
    return 0;
}

int Hypervisor::create_epoll() {
    return k_epoll;
}

int Hypervisor::watch(int /*epoll*/, int /*device*/) {
    return 0;
}

int Hypervisor::wait(int /*epoll*/, virtio::Epoll_events& events, int timeout_ms) {
    // A daemon that doesn't wait would stop time.
    auto const end = stage_.now() + std::chrono::milliseconds(std::max(timeout_ms, 1));
    stage_.events().run_until(end, [this] { return !unread_.empty() || is_lost_ || stage_.is_over(); });
    if (is_lost_) {
        events[0].events = EPOLLHUP | EPOLLERR;
        events[0].data.fd = k_keyboard;
        return 1;
    }
    if (unread_.empty()) {
        return 0;
    }
    events[0].events = EPOLLIN;
    events[0].data.fd = k_keyboard;
    return 1;
}

ssize_t Hypervisor::read_record(int /*device*/, virtio::Input_record_bytes& record) {
    record = unread_.front();
    unread_.pop_front();
    return static_cast<ssize_t>(record.size());
}

int Hypervisor::close_descriptor(int /*descriptor*/) {
    return 0;
}

}  // namespace simulation
