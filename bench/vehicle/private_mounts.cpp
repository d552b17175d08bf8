#include "bench/vehicle/private_mounts.h"

#include "base/descriptor.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace bench::vehicle {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void give_up_in_chroot() {
    throw std::runtime_error(std::string("The root directory is no mount point, and can't be made one: ") +
                             std::strerror(errno) + ". Mount the directory of the chroot on itself before entering it");
}

// From inside a chroot the mount that holds it can't be named, and so not be kept from passing on what is mounted
// inside. So out first: who enters a mount namespace stands at its true root, also when it is one's own. Then the
// chroot's directory is mounted on itself and entered again.
void make_mount_point_of_chroot() {
    auto const working_directory = fs::current_path();
    base::Descriptor const chroot_directory(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    base::Descriptor const own_namespace(static_cast<int>(::syscall(SYS_pidfd_open, ::getpid(), 0)));
    if (::setns(own_namespace.number(), CLONE_NEWNS) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 || ::fchdir(chroot_directory.number()) != 0) {
        give_up_in_chroot();
    }
    auto const path = fs::current_path();
    if (::mount(path.c_str(), path.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0 || ::chdir(path.c_str()) != 0 ||
        ::chroot(".") != 0) {
        give_up_in_chroot();
    }
    fs::current_path(working_directory);
}

}  // namespace

void throw_mount_error(std::string const& target) {
    throw std::runtime_error(target + " can't be mounted: " + std::strerror(errno) +
                             ". Run this as root with the right to mount (in a container: run it privileged)");
}

void make_mounts_private() {
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0) {
        return;
    }
    if (errno != EINVAL) {
        throw_mount_error("/");
    }
    make_mount_point_of_chroot();
}

}  // namespace bench::vehicle
