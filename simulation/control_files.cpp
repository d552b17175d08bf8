#include "simulation/control_files.h"

#include <cerrno>

namespace simulation {

namespace {

Control_files* latest = nullptr;

}  // namespace

Control_files::Control_files(Stage& stage) : stage_(stage) {
    latest = this;
}

Control_files::~Control_files() {
    latest = nullptr;
}

Control_files* Control_files::current() {
    return latest;
}

void Control_files::add(std::string const& path, Reader reader) {
    files_[path].reader = std::move(reader);
}

int Control_files::open(std::string const& path) {
    auto& file = files_.at(path);
    if (file.manner == Manner::missing) {
        errno = ENOENT;
        return -1;
    }
    open_.push_back(&file);
    return k_first_descriptor + static_cast<int>(open_.size()) - 1;
}

bool Control_files::is_open(int descriptor) const {
    return descriptor >= k_first_descriptor && place(descriptor) < open_.size() && open_[place(descriptor)] != nullptr;
}

long Control_files::write(int descriptor, std::string_view bytes) {
    auto const& file = *open_.at(place(descriptor));
    auto const manner = file.manner;
    stage_.hold_up(file.after);
    file.reader(bytes, manner);
    if (manner == Manner::refuses) {
        errno = EIO;
        return -1;
    }
    return static_cast<long>(bytes.size());
}

}  // namespace simulation
