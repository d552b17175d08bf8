#include "channel.h"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace power_off {

namespace {

constexpr std::size_t k_longest_line = 4'096;

[[noreturn]] void fail(std::string const& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// Open for writing too: so there is always a writer, and reading waits instead of ending.
int open_fifo(std::string const& path) {
    int const descriptor = ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {};
    if (descriptor >= 0 && (::fstat(descriptor, &status) != 0 || !S_ISFIFO(status.st_mode))) {
        ::close(descriptor);
        throw std::runtime_error(path + " is there and is no FIFO");
    }
    return descriptor;
}

void give_to(int descriptor, std::string const& writer) {
    passwd const* const user = ::getpwnam(writer.c_str());
    if (user != nullptr && ::fchown(descriptor, user->pw_uid, static_cast<gid_t>(-1)) != 0) {
        fail("fchown to " + writer);
    }
}

}  // namespace

Channel::Channel(std::string const& path, std::string const& writer) : descriptor_(open_fifo(path)) {
    if (descriptor_ < 0 && errno == ENOENT && ::mkfifo(path.c_str(), S_IRUSR | S_IWUSR) == 0) {
        descriptor_ = open_fifo(path);
    }
    if (descriptor_ < 0) {
        fail(path);
    }
    give_to(descriptor_, writer);
}

Channel::~Channel() {
    ::close(descriptor_);
}

std::optional<std::string> Channel::read_line() {
    for (;;) {
        auto const end = waiting_.find('\n');
        if (end != std::string::npos) {
            auto line = waiting_.substr(0, end);
            waiting_.erase(0, end + 1);
            return line;
        }
        if (waiting_.size() > k_longest_line) {
            waiting_.clear();
        }
        std::array<char, k_longest_line> piece{};
        auto const count = ::read(descriptor_, piece.data(), piece.size());
        if (count <= 0) {
            return std::nullopt;
        }
        waiting_.append(piece.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace power_off
