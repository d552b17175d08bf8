#ifndef TESTS_SUPPORT_FAKE_INPUT_SYSTEM_H
#define TESTS_SUPPORT_FAKE_INPUT_SYSTEM_H

#include "statemanager/virtio/input_system.h"

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <linux/input-event-codes.h>

namespace test_support {

namespace virtio = ximo::ap::statemanager::virtio;

/// A directory of input devices that lives in the test's memory and behaves as evdev and epoll do, apart from time: a
/// wait with nothing to report returns at once and is remembered.
///
///     Fake_input_system system;
///     system.add_device("event0");
///     Virtio_interface sut(system);
///     sut.init("/dev/input");
///     system.press("event0", KEY_R);
class Fake_input_system final : public virtio::Input_system {
 public:
    static constexpr std::uint64_t k_keyboard = 1U << EV_SYN | 1U << EV_KEY;

    // What happens in the world. A device is named by its directory entry.
    void add_device(std::string const& name, std::uint64_t types = k_keyboard);
    void unlist_device(std::string const& name) { device(name).listed = false; }  ///< its entry is gone, it is not
    void press(std::string const& name, std::uint16_t code, std::uint16_t type = EV_KEY);  ///< down and up again
    void send(std::string const& name, std::uint16_t type, std::uint16_t code, std::int32_t value);
    void send_bytes(std::string const& name, std::vector<std::uint8_t> bytes);  ///< what one read gives
    void hang_up(std::string const& name);                                      ///< what was not read is lost
    void raise(std::string const& name, std::uint32_t events);                  ///< next wait reports just these

    // What goes wrong. Failures of a device last, the others happen once.
    void refuse_directory() { directory_refused_ = true; }
    void refuse_open(std::string const& name) { device(name).open_refused = true; }
    void refuse_event_types(std::string const& name) { device(name).types_refused = true; }
    void refuse_watch(std::string const& name) { device(name).watch_refused = true; }
    void fail_next_epoll(int error) { epoll_error_ = error; }
    void fail_next_wait(int error) { wait_error_ = error; }
    void fail_next_close_of(int descriptor, int error) { close_errors_[descriptor] = error; }
    void fail_next_read(std::string const& name, int error);

    /// The descriptor that opening the device will give, where the number matters.
    void use_descriptor(std::string const& name, int descriptor) { device(name).next_descriptor = descriptor; }

    // What the code under test did.
    int descriptor_of(std::string const& name) { return device(name).descriptor; }  ///< -1 unless open
    bool is_open(int descriptor) const { return open_.count(descriptor) != 0; }
    std::size_t open_count() const { return open_.size(); }
    std::vector<int> const& waits() const { return waits_; }                 ///< the time-outs, in order
    std::vector<int> const& closes() const { return closes_; }               ///< descriptors, in order
    std::vector<std::string> const& opened_paths() const { return paths_; }  ///< also those refused, in order
    std::vector<std::string> const& directories() const { return directories_; }

    // The system calls.
    std::optional<std::vector<std::string>> list_directory(std::string const& directory) override;
    int open_device(std::string const& path) override;
    int read_event_types(int descriptor, std::uint64_t& types) override;
    int create_epoll() override;
    int watch(int epoll, int descriptor) override;
    int wait(int epoll, virtio::Epoll_events& events, int timeout_ms) override;
    ssize_t read_record(int descriptor, virtio::Input_record_bytes& record) override;
    int close_descriptor(int descriptor) override;

 private:
    struct Read_outcome {
        int error;
        std::vector<std::uint8_t> bytes;
    };
    struct Device {
        std::string name;
        std::uint64_t types{0};
        bool listed{true};
        bool open_refused{false};
        bool types_refused{false};
        bool watch_refused{false};
        bool hung_up{false};
        int next_descriptor{-1};
        int descriptor{-1};
        std::uint32_t raised{0};
        std::deque<Read_outcome> reads;
    };

    Device& device(std::string const& name);
    Device* open_device_of(int descriptor);
    int next_descriptor();
    static std::uint32_t events_of(Device const& device);

    std::vector<Device> devices_;
    std::set<int> open_;
    std::map<int, std::vector<int>> watched_;  ///< by epoll descriptor
    std::map<int, int> close_errors_;
    std::vector<int> waits_;
    std::vector<int> closes_;
    std::vector<std::string> paths_;
    std::vector<std::string> directories_;
    bool directory_refused_{false};
    int epoll_error_{0};
    int wait_error_{0};
    int last_descriptor_{100};
};

}  // namespace test_support

#endif
