#include "bench/hypervisor/input_device.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include <poll.h>
#include <sys/ioctl.h>

namespace bench::hypervisor {

static_assert(sizeof(input_event) == 24, "the record of a 64-bit system");

namespace {

constexpr unsigned k_event_types_number = 0x20;  // EVIOCGBIT(0, any length)

input_event make_record(std::uint16_t type, std::uint16_t code, std::int32_t value) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);  // what evdev stamps with unless told otherwise
    input_event record{};
    record.input_event_sec = now.tv_sec;
    record.input_event_usec = now.tv_nsec / 1000;
    record.type = type;
    record.code = code;
    record.value = value;
    return record;
}

bool asks_for_event_types(unsigned request) {
    return _IOC_TYPE(request) == 'E' && _IOC_NR(request) == k_event_types_number && _IOC_DIR(request) == _IOC_READ;
}

}  // namespace

void Input_device::send(std::uint16_t type, std::uint16_t code, std::int32_t value) {
    if (hung_up_) {
        return;
    }
    input_event const record = make_record(type, code, value);
    for (auto& [reader, queue] : queues_) {
        if (queue.size() == k_queue_length) {
            queue.clear();
            queue.push_back(make_record(EV_SYN, SYN_DROPPED, 0));
        }
        queue.push_back(record);
    }
}

void Input_device::press(std::uint16_t type, std::uint16_t code) {
    for (std::int32_t const value : {1, 0}) {
        send(type, code, value);
        send(EV_SYN, SYN_REPORT, 0);
    }
}

void Input_device::hang_up(bool keep_announcing) {
    hung_up_ = true;
    if (!keep_announcing) {
        for (auto& [reader, queue] : queues_) {
            queue.clear();
        }
    }
}

Outcome Input_device::read(Reader reader, std::size_t space) {
    if (hung_up_) {
        return {ENODEV, {}, {}};
    }
    auto& queue = queues_[reader];
    if (queue.empty() && !faults_.has(Operation::read)) {
        return {EAGAIN, {}, {}};
    }
    Fault const fault = faults_.take(Operation::read);
    if (fault.error != 0) {
        return {fault.error, {}, fault.delay};
    }
    if (space < sizeof(input_event)) {
        return {EINVAL, {}, fault.delay};
    }
    Outcome outcome{queue.empty() ? EAGAIN : 0, {}, fault.delay};
    for (; !queue.empty() && outcome.bytes.size() + sizeof(input_event) <= space; queue.pop_front()) {
        char bytes[sizeof(input_event)];
        std::memcpy(bytes, &queue.front(), sizeof bytes);
        outcome.bytes.append(bytes, sizeof bytes);
    }
    return outcome;
}

Outcome Input_device::control(unsigned request, std::size_t space) {
    Fault const fault = faults_.take(Operation::ioctl);
    if (fault.error != 0) {
        return {fault.error, {}, fault.delay};
    }
    if (hung_up_) {
        return {ENODEV, {}, fault.delay};
    }
    if (!asks_for_event_types(request)) {
        return {ENOTTY, {}, fault.delay};
    }
    char mask[sizeof event_types_];
    std::memcpy(mask, &event_types_, sizeof mask);
    return {0, std::string(mask, std::min(space, sizeof mask)), fault.delay};
}

unsigned Input_device::poll(Reader reader) const {
    unsigned events = hung_up_ ? POLLHUP | POLLERR : POLLOUT | POLLWRNORM;
    auto const queue = queues_.find(reader);
    if ((queue != queues_.end() && !queue->second.empty()) || (!hung_up_ && faults_.has(Operation::read))) {
        events |= POLLIN | POLLRDNORM;
    }
    return events;
}

}  // namespace bench::hypervisor
