#ifndef TESTS_SUPPORT_FREEZER_H
#define TESTS_SUPPORT_FREEZER_H

#include "base/temporary_directory.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include <sys/mount.h>
#include <sys/types.h>
#include <unistd.h>

namespace bench::vehicle {

/// Lets processes stand still together while time goes on, as on a machine that its hypervisor doesn't let run: by a
/// control group of their own, which goes with this object. Inside a world only. The constructor throws
/// `std::runtime_error` where there can be none.
class Freezer {
 public:
    Freezer() {
        if (::mount("none", mount_.path().c_str(), "cgroup2", 0, nullptr) != 0) {
            throw std::runtime_error("no control group can be made here: " + std::generic_category().message(errno));
        }
        std::error_code failed;
        std::filesystem::create_directory(group_, failed);
        if (failed || !write("cgroup.freeze", "0")) {
            release();
            throw std::runtime_error("no control group can be frozen here: " + failed.message());
        }
    }
    ~Freezer() {
        thaw();
        release();
    }
    Freezer(Freezer const&) = delete;
    Freezer& operator=(Freezer const&) = delete;

    /// Takes each process of the world but the test itself, those above it, and one that is left out.
    void enclose_all_but(pid_t left_out) {
        for (auto const& entry : std::filesystem::directory_iterator("/proc")) {
            auto const name = entry.path().filename().string();
            if (name.find_first_not_of("0123456789") == std::string::npos && std::stoi(name) > ::getpid() &&
                std::stoi(name) != left_out) {
                write("cgroup.procs", name);
            }
        }
    }

    void freeze() {
        write("cgroup.freeze", "1");
        while (!is_frozen()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    void thaw() { write("cgroup.freeze", "0"); }

 private:
    bool write(char const* file, std::string const& text) const {
        std::ofstream stream(group_ / file);
        stream << text << std::flush;
        return stream.good();
    }

    bool is_frozen() const {
        std::ifstream stream(group_ / "cgroup.events");
        std::string name;
        int value = 0;
        while (stream >> name >> value) {
            if (name == "frozen") {
                return value == 1;
            }
        }
        return true;
    }

    // A group that still has processes can't go; those of a world end with it, and the group is then empty.
    void release() {
        std::ifstream members(group_ / "cgroup.procs");
        for (std::string process; members >> process;) {
            std::ofstream(mount_.path() / "cgroup.procs") << process << std::flush;
        }
        std::error_code ignored;
        std::filesystem::remove(group_, ignored);
        ::umount2(mount_.path().c_str(), MNT_DETACH);
    }

    base::Temporary_directory const mount_;
    std::filesystem::path const group_{std::filesystem::path(mount_.path()) /
                                       ("statemanager-freezer-" + std::to_string(unique()))};

    // Worlds number their processes alike.
    static std::int64_t unique() { return std::chrono::steady_clock::now().time_since_epoch().count(); }
};

}  // namespace bench::vehicle

#endif
