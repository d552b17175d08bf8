#include "support/fake_input_system.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <utility>

namespace test_support {

namespace {

int fail(int error) {
    errno = error;
    return -1;
}

std::vector<std::uint8_t> record_bytes(std::uint16_t type, std::uint16_t code, std::int32_t value) {
    auto const number = static_cast<std::uint32_t>(value);
    std::vector<std::uint8_t> bytes(16, 0xA5);  // a time stamp that must not matter
    for (unsigned const shift : {0U, 8U}) {
        bytes.push_back(static_cast<std::uint8_t>(type >> shift));
    }
    for (unsigned const shift : {0U, 8U}) {
        bytes.push_back(static_cast<std::uint8_t>(code >> shift));
    }
    for (unsigned const shift : {0U, 8U, 16U, 24U}) {
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
    }
    return bytes;
}

}  // namespace

void Fake_input_system::add_device(std::string const& name, std::uint64_t types) {
    Device added;
    added.name = name;
    added.types = types;
    devices_.push_back(std::move(added));
}

void Fake_input_system::press(std::string const& name, std::uint16_t code, std::uint16_t type) {
    for (std::int32_t const value : {1, 0}) {
        send(name, type, code, value);
        send(name, EV_SYN, SYN_REPORT, 0);
    }
}

void Fake_input_system::send(std::string const& name, std::uint16_t type, std::uint16_t code, std::int32_t value) {
    send_bytes(name, record_bytes(type, code, value));
}

void Fake_input_system::send_bytes(std::string const& name, std::vector<std::uint8_t> bytes) {
    device(name).reads.push_back({0, std::move(bytes)});
}

void Fake_input_system::fail_next_read(std::string const& name, int error) {
    device(name).reads.push_front({error, {}});
}

void Fake_input_system::hang_up(std::string const& name) {
    device(name).hung_up = true;
    device(name).reads.clear();
}

void Fake_input_system::raise(std::string const& name, std::uint32_t events) {
    device(name).raised = events;
}

std::optional<std::vector<std::string>> Fake_input_system::list_directory(std::string const& directory) {
    directories_.push_back(directory);
    if (directory_refused_) {
        fail(ENOENT);
        return std::nullopt;
    }
    std::vector<std::string> names;
    for (Device const& candidate : devices_) {
        if (candidate.listed) {
            names.push_back(candidate.name);
        }
    }
    return names;
}

int Fake_input_system::open_device(std::string const& path) {
    paths_.push_back(path);
    Device& opened = device(path.substr(path.rfind('/') + 1));
    if (opened.open_refused) {
        return fail(EACCES);
    }
    opened.descriptor = opened.next_descriptor >= 0 ? opened.next_descriptor : next_descriptor();
    open_.insert(opened.descriptor);
    return opened.descriptor;
}

int Fake_input_system::read_event_types(int descriptor, std::uint64_t& types) {
    Device const& asked = *open_device_of(descriptor);
    types = asked.types;
    return asked.types_refused ? fail(ENOTTY) : static_cast<int>(sizeof types);
}

int Fake_input_system::create_epoll() {
    if (int const error = std::exchange(epoll_error_, 0)) {
        return fail(error);
    }
    int const epoll = next_descriptor();
    open_.insert(epoll);
    watched_[epoll];
    return epoll;
}

int Fake_input_system::watch(int epoll, int descriptor) {
    if (open_device_of(descriptor)->watch_refused) {
        return fail(EPERM);
    }
    watched_.at(epoll).push_back(descriptor);
    return 0;
}

int Fake_input_system::wait(int epoll, virtio::Epoll_events& events, int timeout_ms) {
    waits_.push_back(timeout_ms);
    if (int const error = std::exchange(wait_error_, 0)) {
        return fail(error);
    }
    std::size_t count = 0;
    for (int const descriptor : watched_.at(epoll)) {
        Device& watched = *open_device_of(descriptor);
        std::uint32_t const ready = events_of(watched);
        if (ready != 0 && count < events.size()) {
            events.at(count).events = ready;
            events.at(count).data.fd = descriptor;
            watched.raised = 0;
            ++count;
        }
    }
    return static_cast<int>(count);
}

ssize_t Fake_input_system::read_record(int descriptor, virtio::Input_record_bytes& record) {
    Device& source = *open_device_of(descriptor);
    if (source.reads.empty()) {
        return fail(source.hung_up ? ENODEV : EAGAIN);
    }
    Read_outcome const outcome = source.reads.front();
    source.reads.pop_front();
    if (outcome.error != 0) {
        return fail(outcome.error);
    }
    std::size_t const count = std::min(outcome.bytes.size(), record.size());
    std::copy_n(outcome.bytes.begin(), count, record.begin());
    return static_cast<ssize_t>(count);
}

int Fake_input_system::close_descriptor(int descriptor) {
    closes_.push_back(descriptor);
    if (open_.erase(descriptor) == 0) {
        return fail(EBADF);
    }
    if (Device* const closed = open_device_of(descriptor)) {
        closed->descriptor = -1;
    }
    watched_.erase(descriptor);
    for (auto& [epoll, descriptors] : watched_) {
        descriptors.erase(std::remove(descriptors.begin(), descriptors.end(), descriptor), descriptors.end());
    }
    auto const error = close_errors_.find(descriptor);
    return error == close_errors_.end() ? 0 : fail(error->second);
}

Fake_input_system::Device& Fake_input_system::device(std::string const& name) {
    for (Device& candidate : devices_) {
        if (candidate.name == name) {
            return candidate;
        }
    }
    throw std::logic_error("there is no device " + name);
}

Fake_input_system::Device* Fake_input_system::open_device_of(int descriptor) {
    auto const is_open = [descriptor](Device const& candidate) { return candidate.descriptor == descriptor; };
    auto const found = std::find_if(devices_.begin(), devices_.end(), is_open);
    return found == devices_.end() ? nullptr : &*found;
}

int Fake_input_system::next_descriptor() {
    return ++last_descriptor_;
}

std::uint32_t Fake_input_system::events_of(Device const& device) {
    if (device.raised != 0) {
        return device.raised;
    }
    std::uint32_t const input = device.reads.empty() ? 0U : std::uint32_t{EPOLLIN};
    std::uint32_t const gone = device.hung_up ? std::uint32_t{EPOLLHUP} | std::uint32_t{EPOLLERR} : 0U;
    return input | gone;
}

}  // namespace test_support
