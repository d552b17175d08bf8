#include "bench/hypervisor/fuse_requirements.h"

#include <fstream>

#include <unistd.h>

namespace bench::hypervisor {

namespace {

constexpr unsigned long long k_sys_admin = 1ULL << 21U;  // CAP_SYS_ADMIN, which mounting needs

bool may_mount() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("CapEff:", 0) == 0) {
            return (std::stoull(line.substr(line.find('\t')), nullptr, 16) & k_sys_admin) != 0;
        }
    }
    return false;
}

bool has_mount_helper() {
    return ::access("/usr/bin/fusermount3", X_OK) == 0 || ::access("/bin/fusermount3", X_OK) == 0;
}

}  // namespace

std::string missing_for_fuse() {
    if (::access("/dev/fuse", F_OK) != 0) {
        return "the kernel offers no FUSE: /dev/fuse is missing (modprobe fuse, or give the container the device)";
    }
    // fusermount3 opens it with the user's rights too.
    if (::access("/dev/fuse", R_OK | W_OK) != 0) {
        return "this user may not open /dev/fuse (chmod 0666 /dev/fuse, as most distributions have it, or run as root)";
    }
    if (!may_mount() && !has_mount_helper()) {
        return "this user may not mount by itself and fusermount3 is missing (apt-get install fuse3, or run as root)";
    }
    return {};
}

}  // namespace bench::hypervisor
