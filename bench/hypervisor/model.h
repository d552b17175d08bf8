#ifndef BENCH_HYPERVISOR_MODEL_H
#define BENCH_HYPERVISOR_MODEL_H

#include "bench/hypervisor/control_file.h"
#include "bench/hypervisor/input_device.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench::hypervisor {

/// All that the hypervisor shows to its machine: input devices, which come and go, and the two VM-control files
/// "set_status" and "command_request". It knows nothing of how they are made into files. One thread.
class Model {
 public:
    /// Called when a device has something new for its readers: a record, a fault, a hang-up.
    using Device_changed = std::function<void(Input_device&)>;

    Model();

    void on_change(Device_changed listener) { listener_ = std::move(listener); }
    void changed(Input_device& device) const;

    /// Adds a device under a name that no file has yet; nullptr when the name is taken or can't be a file name.
    std::shared_ptr<Input_device> add_device(std::string const& name, std::uint64_t event_types);

    /// The device hangs up and its file is gone; false when there is no such device.
    bool remove_device(std::string const& name);

    /// nullptr when there is none of that name.
    std::shared_ptr<Input_device> device(std::string const& name) const;
    std::shared_ptr<Control_file> control_file(std::string const& name) const;

    /// In the order in which they were added.
    std::vector<std::shared_ptr<Input_device>> const& devices() const { return devices_; }
    std::vector<std::shared_ptr<Control_file>> const& control_files() const { return control_files_; }

 private:
    std::vector<std::shared_ptr<Input_device>> devices_;
    std::vector<std::shared_ptr<Control_file>> control_files_;
    Device_changed listener_;
};

}  // namespace bench::hypervisor

#endif
