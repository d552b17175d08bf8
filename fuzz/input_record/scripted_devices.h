#ifndef FUZZ_INPUT_RECORD_SCRIPTED_DEVICES_H
#define FUZZ_INPUT_RECORD_SCRIPTED_DEVICES_H

#include "statemanager/virtio/input_system.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

namespace virtio = ximo::ap::statemanager::virtio;

/// Seven keyboards that do what a string of bytes says.
///
/// A wait takes one byte for the number of events and two for each event: the device, and what epoll reports of it. A
/// read takes one byte for its outcome (a whole record, a short one or a failure) and then the bytes that it gives.
class Scripted_devices final : public virtio::Input_system {
 public:
    Scripted_devices(std::uint8_t const* script, std::size_t size) : script_(script), left_(size) {}

    /// All was said, or nobody is left to whom it could happen.
    bool ended() const { return left_ == 0 || watched_.empty(); }

    std::optional<std::vector<std::string>> list_directory(std::string const& directory) override;
    int open_device(std::string const& path) override;
    int read_event_types(int device, std::uint64_t& types) override;
    int create_epoll() override;
    int watch(int epoll, int device) override;
    int wait(int epoll, virtio::Epoll_events& events, int timeout_ms) override;
    ssize_t read_record(int device, virtio::Input_record_bytes& record) override;
    int close_descriptor(int descriptor) override;

 private:
    std::uint8_t next();
    epoll_event next_event();

    std::uint8_t const* script_;
    std::size_t left_;
    std::vector<int> watched_;
};

}  // namespace fuzz

#endif
