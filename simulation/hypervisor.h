#ifndef SIMULATION_HYPERVISOR_H
#define SIMULATION_HYPERVISOR_H

#include "simulation/stage.h"
#include "statemanager/virtio/input_system.h"

#include <deque>
#include <string>
#include <vector>

namespace simulation {

/// The hypervisor's keyboard. While the driver waits for its keys, and only then, virtual time passes.
class Hypervisor final : public ximo::ap::statemanager::virtio::Input_system {
 public:
    explicit Hypervisor(Stage& stage) : stage_(stage) {}

    /// Presses and releases "r", "n", "s", "p" or "power": two records and what ends each group.
    void press(std::string const& key);

    /// Only the record that tells that it is down.
    void key_down(std::string const& key);

    /// The keyboard is gone for good, with what was not read; nobody hears keys any more.
    void lose_keyboard();

    /// A driver without a keyboard does not wait: a cycle of its takes a moment.
    void begin_cycle();

    static bool has_key(std::string const& key);

    std::optional<std::vector<std::string>> list_directory(std::string const& directory) override;
    int open_device(std::string const& path) override;
    int read_event_types(int device, std::uint64_t& types) override;
    int create_epoll() override;
    int watch(int epoll, int device) override;
    int wait(int epoll, ximo::ap::statemanager::virtio::Epoll_events& events, int timeout_ms) override;
    ssize_t read_record(int device, ximo::ap::statemanager::virtio::Input_record_bytes& record) override;
    int close_descriptor(int descriptor) override;

 private:
    Stage& stage_;
    std::deque<ximo::ap::statemanager::virtio::Input_record_bytes> unread_;
    bool is_lost_{false};
};

}  // namespace simulation

#endif
