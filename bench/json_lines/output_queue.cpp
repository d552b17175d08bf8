#include "bench/json_lines/output_queue.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <unistd.h>

namespace bench {

namespace {

// A pipe that poll() reports writable takes at least this much (PIPE_BUF) without blocking.
constexpr std::size_t k_safe_write = 4096;

}  // namespace

void Output_queue::send(std::string_view line) {
    if (bytes_.size() + line.size() >= k_most_waiting) {
        ++dropped_;
        return;
    }
    bytes_.append(line).push_back('\n');
    flush();
}

bool Output_queue::writable(int timeout_ms) const {
    pollfd entry{descriptor_, POLLOUT, 0};
    return ::poll(&entry, 1, timeout_ms) == 1;
}

void Output_queue::flush() {
    while (!bytes_.empty() && writable(0)) {
        ssize_t const written = ::write(descriptor_, bytes_.data(), std::min(bytes_.size(), k_safe_write));
        if (written < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        if (written < 0) {
            bytes_.clear();
            return;
        }
        bytes_.erase(0, static_cast<std::size_t>(written));
    }
}

void Output_queue::drain(std::chrono::milliseconds limit) {
    auto const end = std::chrono::steady_clock::now() + limit;
    flush();
    while (!bytes_.empty() && std::chrono::steady_clock::now() < end) {
        writable(10);
        flush();
    }
}

}  // namespace bench
