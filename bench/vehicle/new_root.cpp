#include "bench/vehicle/new_root.h"

#include "bench/vehicle/private_mounts.h"
#include "bench/vehicle/world.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace bench::vehicle {

namespace {

namespace fs = std::filesystem;

// What the machine has of its own.
std::set<std::string> const& private_directories() {
    static auto const& names =
        *new std::set<std::string>{"dev", "etc", "lost+found", "proc", "run", "sys", "tmp", "var"};
    return names;
}

void mount_or_throw(char const* source, fs::path const& target, char const* type, unsigned long flags,
                    char const* options = nullptr) {
    if (::mount(source, target.c_str(), type, flags, options) != 0) {
        throw_mount_error(target.string());
    }
}

void bind_directory(fs::path const& source, fs::path const& target) {
    fs::create_directories(target);
    mount_or_throw(source.c_str(), target, nullptr, MS_BIND | MS_REC);
}

void bind_file(fs::path const& source, fs::path const& target) {
    std::ofstream(target).close();
    mount_or_throw(source.c_str(), target, nullptr, MS_BIND);
}

void share_the_hosts_programs(fs::path const& root) {
    for (auto const& entry : fs::directory_iterator("/")) {
        auto const name = entry.path().filename();
        if (private_directories().count(name.string()) != 0) {
            continue;
        }
        if (entry.is_symlink()) {
            fs::copy_symlink(entry.path(), root / name);
        } else if (entry.is_directory()) {
            bind_directory(entry.path(), root / name);
        }
    }
}

void make_devices(fs::path const& dev) {
    fs::create_directories(dev / "shm");
    for (char const* const name : {"null", "zero", "full", "random", "urandom", "tty", "fuse"}) {
        bind_file(fs::path("/dev") / name, dev / name);
    }
    if (fs::exists("/dev/pts")) {
        bind_directory("/dev/pts", dev / "pts");
        fs::create_symlink("pts/ptmx", dev / "ptmx");
    }
    fs::create_symlink("/proc/self/fd", dev / "fd");
    fs::create_symlink(std::string(k_hypervisor) + "/input", dev / "input");
}

// Only what programs look up; the daemon's configuration is put there by whoever starts it.
void make_etc(fs::path const& etc) {
    fs::create_directories(etc / "adaptive");
    for (char const* const name : {"passwd", "group", "nsswitch.conf", "ld.so.cache", "ld.so.conf", "localtime",
                                   "services", "protocols", "terminfo", "alternatives"}) {
        auto const source = fs::path("/etc") / name;
        std::error_code ignored;
        fs::copy(source, etc / name, fs::copy_options::recursive | fs::copy_options::copy_symlinks, ignored);
    }
    std::ofstream(etc / "hosts") << "127.0.0.1 localhost\n";
}

void make_proc(fs::path const& proc) {
    fs::create_directories(proc);
    if (::mount("proc", proc.c_str(), "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) != 0) {
        bind_directory("/proc", proc);  // forbidden in some containers; the host's shows other process ids
    }
}

void make_private_directories(fs::path const& root) {
    make_devices(root / "dev");
    make_etc(root / "etc");
    make_proc(root / "proc");
    fs::create_directories(root / "run/adaptive");
    fs::create_directories(root / "var/log");
    fs::create_directories(root / "var/tmp");
    fs::create_symlink("/run", root / "var/run");
    fs::create_directories(root / "tmp");
    for (char const* const name : {"tmp", "var/tmp", "dev/shm"}) {
        ::chmod((root / name).c_str(), 01777);
    }
    fs::create_directories(root / "sys");
    fs::create_symlink(std::string(k_hypervisor) + "/vmctl", root / "sys/vmctl");
    fs::create_directories(root.string() + k_hypervisor);
}

/// The directory of the host on which the new root is put together. It is empty again and gone once the root has moved
/// away from it, or could not be made.
class Building_site {
 public:
    Building_site() {
        path_ = (fs::temp_directory_path() / "vehicle-XXXXXX").string();
        if (::mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error(path_ + " can't be made: " + std::strerror(errno));
        }
    }
    ~Building_site() {
        if (!has_moved_) {
            ::umount2(path_.c_str(), MNT_DETACH);
            ::rmdir(path_.c_str());
        }
    }
    Building_site(Building_site const&) = delete;
    Building_site& operator=(Building_site const&) = delete;

    fs::path path() const { return path_; }

    /// The host's root directory is at `old` now, for the last time.
    void clear(fs::path const& old) {
        ::rmdir((old / fs::path(path_).relative_path()).c_str());
        has_moved_ = true;
    }

 private:
    std::string path_;
    bool has_moved_{false};
};

void change_root(Building_site& site) {
    auto const here = fs::current_path();
    auto const old = site.path() / "old";
    fs::create_directories(old);
    if (::syscall(SYS_pivot_root, site.path().c_str(), old.c_str()) != 0) {
        throw std::runtime_error(std::string("The root directory can't be changed: ") + std::strerror(errno));
    }
    site.clear("/old");
    std::error_code ignored;
    fs::current_path(here, ignored);
    if (ignored) {
        fs::current_path("/");
    }
    ::umount2("/old", MNT_DETACH);
    fs::remove("/old", ignored);
}

}  // namespace

void move_into_new_root(std::string const& project) {
    make_mounts_private();
    Building_site site;
    auto const root = site.path();
    mount_or_throw("tmpfs", root, "tmpfs", MS_NOSUID, "mode=755,size=256m");
    share_the_hosts_programs(root);
    make_private_directories(root);
    auto const first = fs::path(project).relative_path().begin()->string();
    if (private_directories().count(first) != 0) {
        bind_directory(project, root / fs::path(project).relative_path());
    }
    change_root(site);
}

}  // namespace bench::vehicle
