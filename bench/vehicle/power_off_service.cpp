#include "bench/vehicle/power_off_service.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace bench::vehicle {

namespace {

constexpr char const* k_channel = "/run/adaptive/poweroff";

int open_channel() {
    ::unlink(k_channel);
    // Open for writing too, so that the end of one daemon is not the end of the channel.
    int const descriptor = ::mkfifo(k_channel, 0600) == 0 ? ::open(k_channel, O_RDWR | O_NONBLOCK | O_CLOEXEC) : -1;
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), k_channel);
    }
    return descriptor;
}

}  // namespace

Power_off_service::Power_off_service() : descriptor_(open_channel()) {}

Power_off_service::~Power_off_service() {
    ::close(descriptor_);
    ::unlink(k_channel);
}

std::vector<std::string> Power_off_service::take() {
    std::vector<std::string> commands;
    std::array<char, 256> buffer{};
    for (ssize_t count = 0; (count = ::read(descriptor_, buffer.data(), buffer.size())) > 0;) {
        unfinished_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    for (auto end = unfinished_.find('\n'); end != std::string::npos; end = unfinished_.find('\n')) {
        commands.push_back(unfinished_.substr(0, end));
        unfinished_.erase(0, end + 1);
    }
    return commands;
}

}  // namespace bench::vehicle
