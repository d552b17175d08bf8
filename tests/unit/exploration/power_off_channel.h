#ifndef TESTS_UNIT_EXPLORATION_POWER_OFF_CHANNEL_H
#define TESTS_UNIT_EXPLORATION_POWER_OFF_CHANNEL_H

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace exploration {

/// A power-off service that listens where the daemon looks for it, as long as this object lives.
class Power_off_channel {
 public:
    Power_off_channel() {
        ::mkdir("/run/adaptive", 0755);
        if (::mkfifo(k_path, 0600) != 0) {
            throw std::system_error(errno, std::generic_category(), k_path);
        }
        descriptor_ = ::open(k_path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
    ~Power_off_channel() {
        ::close(descriptor_);
        ::unlink(k_path);
    }
    Power_off_channel(Power_off_channel const&) = delete;
    Power_off_channel& operator=(Power_off_channel const&) = delete;

    /// What has come since the last time.
    std::string read() const {
        std::array<char, 4096> bytes;
        ssize_t const count = ::read(descriptor_, bytes.data(), bytes.size());
        return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
    }

 private:
    static constexpr char const* k_path = "/run/adaptive/poweroff";

    int descriptor_;
};

}  // namespace exploration

#endif
