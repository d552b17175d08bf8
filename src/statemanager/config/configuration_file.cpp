#include "statemanager/config/configuration_file.h"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::config {
namespace {

constexpr std::size_t k_chunk = 4096;

void require_regular_file(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        throw std::system_error(errno, std::generic_category(), "file status can't be read");
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::runtime_error("it is not a regular file");
    }
}

std::size_t read_some(int descriptor, std::array<char, k_chunk>& chunk) {
    for (;;) {
        auto const count = ::read(descriptor, chunk.data(), chunk.size());
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "file can't be read");
        }
    }
}

}  // namespace

// Without O_NONBLOCK a FIFO at the path would hold the start of the daemon until somebody writes to it.
Configuration_file::Configuration_file(std::string const& path)
    : file_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {}

std::string Configuration_file::read() const {
    require_regular_file(file_.number());
    std::string content;
    std::array<char, k_chunk> chunk;
    while (auto const count = read_some(file_.number(), chunk)) {
        content.append(chunk.data(), count);
        if (content.size() > k_largest) {
            throw std::runtime_error("it is larger than " + std::to_string(k_largest) + " bytes");
        }
    }
    return content;
}

}  // namespace ximo::ap::statemanager::config
