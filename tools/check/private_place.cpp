#include "tools/check/private_place.h"

#include "base/descriptor.h"
#include "utilities/protocol.h"
#include "utilities/socket.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace statectl::check {

namespace fs = std::filesystem;

namespace {

void require(bool done, std::string const& what) {
    if (!done) {
        throw std::runtime_error(what + ": " + std::strerror(errno));
    }
}

void write_setting(char const* path, std::string const& text) {
    require(static_cast<bool>(std::ofstream(path) << text << std::flush), path);
}

// Users keep who they are; only the right to mount is added, and it ends with the next program.
void make_namespaces() {
    auto const user = std::to_string(::geteuid());
    auto const group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWNS) != 0) {
        require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "namespaces can't be made");
        write_setting("/proc/self/setgroups", "deny");
        write_setting("/proc/self/uid_map", user + " " + user + " 1");
        write_setting("/proc/self/gid_map", group + " " + group + " 1");
    }
    require(::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mounts can't be made private");
}

void bind(fs::path const& from, fs::path const& to) {
    require(::mount(from.c_str(), to.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0, to.string());
}

// An entry of a directory under the same name in another one.
void show(fs::directory_entry const& entry, fs::path const& in) {
    auto const shown = in / entry.path().filename();
    if (entry.is_symlink()) {
        fs::copy_symlink(entry.path(), shown);
        return;
    }
    if (entry.is_directory()) {
        fs::create_directory(shown);
    } else {
        std::ofstream const file(shown);
    }
    bind(entry.path(), shown);
}

// Covers a directory with an empty one that shows the same entries, so that more can be added.
void make_extensible(fs::path const& directory) {
    base::Descriptor const covered(::open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    require(::mount("tmpfs", directory.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755") == 0, directory.string());
    for (auto const& entry : fs::directory_iterator("/proc/self/fd/" + std::to_string(covered.number()))) {
        show(entry, directory);
    }
}

fs::path nearest_existing(fs::path path) {
    while (!fs::exists(path)) {
        path = path.parent_path();
    }
    return fs::canonical(path);
}

}  // namespace

void enter_private_place(fs::path const& directory) {
    auto const place = fs::path(utilities::get_socket_path()).parent_path();
    make_namespaces();
    if (!fs::exists(place)) {
        make_extensible(nearest_existing(place));
        fs::create_directories(place);
    }
    bind(directory, fs::canonical(place));
}

std::string why_no_private_place(fs::path const& directory) {
    auto [ours, childs] = utilities::socket_pair();
    pid_t const child = ::fork();
    if (child == 0) {
        try {
            enter_private_place(directory);
        } catch (std::exception const& error) {
            childs.sendl(error.what(), std::strlen(error.what()), 0);
        }
        ::_exit(0);
    }
    require(child > 0, "fork");
    ::waitpid(child, nullptr, 0);
    std::array<char, 512> text{};
    try {
        ours.recv(text.data(), text.size() - 1, MSG_DONTWAIT);
    } catch (std::runtime_error const&) {  // nothing came: it could
    }
    return text.data();
}

}  // namespace statectl::check
