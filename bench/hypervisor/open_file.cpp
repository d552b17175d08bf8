#include "bench/hypervisor/open_file.h"

namespace bench::hypervisor {

Open_file& Open_files::add(std::shared_ptr<Input_device> device, std::shared_ptr<Control_file> control_file) {
    Open_file& file = files_[next_handle_];
    file.handle = next_handle_++;
    file.device = std::move(device);
    file.control_file = std::move(control_file);
    if (file.device) {
        file.device->add_reader(file.handle);
    }
    return file;
}

void Open_files::remove(std::uint64_t handle) {
    Open_file const& file = files_.at(handle);
    if (file.device) {
        file.device->remove_reader(handle);
    }
    files_.erase(handle);
}

}  // namespace bench::hypervisor
