#include "bench/vm/port.h"

#include "bench/process/end_signals.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace bench::vm {

namespace {

constexpr std::chrono::seconds k_patience{10};
constexpr std::chrono::milliseconds k_pause{5};

bool connect_to(int socket, std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), sizeof(address.sun_path) - 1);
    return ::connect(socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
}

}  // namespace

Port::Port(std::string const& path) : descriptor_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    while (!connect_to(descriptor_, path)) {
        if (std::chrono::steady_clock::now() > deadline || noted_end_signal() != 0) {
            ::close(descriptor_);
            throw std::runtime_error("The emulator does not listen on " + path);
        }
        std::this_thread::sleep_for(k_pause);
    }
}

Port::~Port() {
    ::close(descriptor_);
}

std::string Port::take() {
    std::string bytes;
    std::array<char, 65'536> piece{};
    for (;;) {
        auto const count = ::recv(descriptor_, piece.data(), piece.size(), MSG_DONTWAIT);
        if (count <= 0) {
            is_open_ = is_open_ && count < 0 && (errno == EAGAIN || errno == EINTR);
            return bytes;
        }
        bytes.append(piece.data(), static_cast<std::size_t>(count));
    }
}

void Port::send(std::string const& bytes) const {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        auto const count = ::send(descriptor_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count < 0) {
            throw std::runtime_error(std::string("The machine can't be reached: ") + std::strerror(errno));
        }
        sent += static_cast<std::size_t>(count);
    }
}

}  // namespace bench::vm
