#include "benchmarks/machine/private_machine.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

namespace benchmarks {

namespace {

namespace fs = std::filesystem;

void require(bool done, std::string const& what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

void mount_at(char const* source, std::string const& target, char const* type, unsigned long flags,
              std::string const& options = "") {
    require(::mount(source, target.c_str(), type, flags, options.c_str()) == 0, "mount " + target);
}

void unshare_namespaces() {
    uid_t const user = ::geteuid();
    gid_t const group = ::getegid();
    int const namespaces = CLONE_NEWNS | CLONE_NEWUTS | CLONE_NEWNET | CLONE_NEWIPC;
    require(::unshare(user == 0 ? namespaces : namespaces | CLONE_NEWUSER) == 0, "unshare");
    if (user != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    mount_at(nullptr, "/", nullptr, MS_REC | MS_PRIVATE);
}

void bring_loopback_up() {
    int const socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    request.ifr_name[0] = 'l';
    request.ifr_name[1] = 'o';
    bool const up = ::ioctl(socket, SIOCGIFFLAGS, &request) == 0 &&
                    ((request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP)), true) &&
                    ::ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    ::close(socket);
    require(up, "interface lo");
}

// /etc with a private layer on top, so that /etc/adaptive can be there.
void make_etc(fs::path const& scratch) {
    fs::create_directories(scratch / "etc-upper");
    fs::create_directories(scratch / "etc-work");
    mount_at(
        "overlay", "/etc", "overlay", 0,
        "lowerdir=/etc,upperdir=" + (scratch / "etc-upper").string() + ",workdir=" + (scratch / "etc-work").string());
    fs::create_directories("/etc/adaptive");
}

// /dev with the few devices that the programs need, and room for /dev/input.
void make_dev(fs::path const& scratch) {
    fs::path const dev = scratch / "dev";
    for (char const* directory : {"input", "shm"}) {
        fs::create_directories(dev / directory);
    }
    for (char const* device : {"null", "zero", "full", "random", "urandom", "tty", "fuse"}) {
        std::ofstream(dev / device).close();
        mount_at((std::string("/dev/") + device).c_str(), dev / device, nullptr, MS_BIND);
    }
    mount_at(dev.c_str(), "/dev", nullptr, MS_BIND | MS_REC);
}

}  // namespace

void enter_private_machine(std::string const& scratch) {
    unshare_namespaces();
    bring_loopback_up();
    mount_at("tmpfs", scratch, "tmpfs", MS_NOSUID);
    make_etc(scratch);
    make_dev(scratch);
    mount_at("tmpfs", "/run", "tmpfs", MS_NOSUID);
    fs::create_directories("/run/adaptive");
}

void bind_directory(std::string const& from, std::string const& to) {
    mount_at(from.c_str(), to, nullptr, MS_BIND);
}

}  // namespace benchmarks
