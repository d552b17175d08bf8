#include "ara/com/dds/offers/process_space.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace ara::com::dds {

std::string process_space() {
    std::string boot;
    std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), boot);
    std::error_code unreadable;
    auto const processes = std::filesystem::read_symlink("/proc/self/ns/pid", unreadable);
    return boot.empty() || unreadable ? std::string() : boot + ' ' + processes.string();
}

}  // namespace ara::com::dds
