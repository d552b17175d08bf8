#include "bench/hypervisor/model.h"

#include <algorithm>
#include <climits>

namespace bench::hypervisor {

namespace {

bool usable_file_name(std::string const& name) {
    return !name.empty() && name.size() <= NAME_MAX && name != "." && name != ".." &&
           name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
}

template <class File>
std::shared_ptr<File> find_by_name(std::vector<std::shared_ptr<File>> const& files, std::string const& name) {
    auto const found = std::find_if(files.begin(), files.end(), [&](auto const& file) { return file->name() == name; });
    return found == files.end() ? nullptr : *found;
}

}  // namespace

Model::Model()
    : control_files_{std::make_shared<Control_file>("set_status"), std::make_shared<Control_file>("command_request")} {}

void Model::changed(Input_device& device) const {
    if (listener_) {
        listener_(device);
    }
}

std::shared_ptr<Input_device> Model::add_device(std::string const& name, std::uint64_t event_types) {
    if (!usable_file_name(name) || device(name) || control_file(name)) {
        return nullptr;
    }
    return devices_.emplace_back(std::make_shared<Input_device>(name, event_types));
}

bool Model::remove_device(std::string const& name) {
    auto const gone = device(name);
    if (!gone) {
        return false;
    }
    devices_.erase(std::remove(devices_.begin(), devices_.end(), gone), devices_.end());
    gone->hang_up(false);
    changed(*gone);
    return true;
}

std::shared_ptr<Input_device> Model::device(std::string const& name) const {
    return find_by_name(devices_, name);
}

std::shared_ptr<Control_file> Model::control_file(std::string const& name) const {
    return find_by_name(control_files_, name);
}

}  // namespace bench::hypervisor
