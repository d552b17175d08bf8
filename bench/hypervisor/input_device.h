#ifndef BENCH_HYPERVISOR_INPUT_DEVICE_H
#define BENCH_HYPERVISOR_INPUT_DEVICE_H

#include "bench/hypervisor/fault_plan.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>

#include <linux/input.h>

namespace bench::hypervisor {

/// What a read, an ioctl or a write gives: bytes or an errno value.
struct Outcome {
    int error{0};
    std::string bytes;
    std::chrono::milliseconds delay{0};
};

/// An input device that answers as the kernel's evdev does.
///
/// Each reader (one open file) has a queue of its own and sees what is pressed after it opened. A read gives as many
/// whole records as fit; EAGAIN when there are none, EINVAL when not even one fits, ENODEV once the device hung up.
/// A queue that is full is emptied: the reader finds SYN_DROPPED and the newest record.
class Input_device {
 public:
    using Reader = std::uint64_t;

    /// Records that wait for one reader; the kernel's smallest buffer.
    static constexpr std::size_t k_queue_length = 64;

    /// `event_types` has bit n set when the device can send events of type n (EV_SYN is bit 0, EV_KEY bit 1).
    Input_device(std::string name, std::uint64_t event_types) : name_(std::move(name)), event_types_(event_types) {}

    void add_reader(Reader reader) { queues_[reader]; }
    void remove_reader(Reader reader) { queues_.erase(reader); }

    /// Gives one record to every reader.
    void send(std::uint16_t type, std::uint16_t code, std::int32_t value);

    /// A key goes down and up: press, EV_SYN, release, EV_SYN.
    void press(std::uint16_t type, std::uint16_t code);

    /// The device goes away under its readers. What they have not read is dropped, or, as in the kernel, stays
    /// announced by poll and can't be read any more.
    void hang_up(bool keep_announcing);

    Outcome read(Reader reader, std::size_t space);

    /// The event types for EVIOCGBIT(0, n), cut to `space` bytes; ENOTTY for any other request.
    Outcome control(unsigned request, std::size_t space);

    /// POLLIN, POLLOUT, POLLHUP and POLLERR as the kernel sets them. A planned read fault makes the device readable.
    unsigned poll(Reader reader) const;

    std::string const& name() const { return name_; }
    std::uint64_t event_types() const { return event_types_; }
    bool hung_up() const { return hung_up_; }
    std::size_t readers() const { return queues_.size(); }
    Fault_plan& faults() { return faults_; }

 private:
    std::string name_;
    std::uint64_t event_types_;
    bool hung_up_{false};
    Fault_plan faults_;
    std::map<Reader, std::deque<input_event>> queues_;
};

}  // namespace bench::hypervisor

#endif
