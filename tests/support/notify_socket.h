#ifndef TESTS_SUPPORT_NOTIFY_SOCKET_H
#define TESTS_SUPPORT_NOTIFY_SOCKET_H

#include "support/temporary_directory.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace test_support {

/// A service manager's notification socket, named in NOTIFY_SOCKET as long as it lives.
class Notify_socket {
 public:
    Notify_socket() : descriptor_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        auto const path = directory_.file("notify");
        std::copy(path.begin(), path.end(), address.sun_path);
        ::bind(descriptor_, reinterpret_cast<sockaddr const*>(&address), sizeof address);
        ::setenv("NOTIFY_SOCKET", path.c_str(), 1);
    }
    ~Notify_socket() {
        ::unsetenv("NOTIFY_SOCKET");
        ::close(descriptor_);
    }
    Notify_socket(Notify_socket const&) = delete;
    Notify_socket& operator=(Notify_socket const&) = delete;

    /// What has arrived since the last call, a line each.
    std::vector<std::string> received() const {
        std::vector<std::string> lines;
        std::array<char, 256> buffer{};
        for (;;) {
            auto const count = ::recv(descriptor_, buffer.data(), buffer.size(), 0);
            if (count < 0) {
                return lines;
            }
            lines.emplace_back(buffer.data(), static_cast<std::size_t>(count));
        }
    }

 private:
    Temporary_directory directory_;
    int descriptor_;
};

}  // namespace test_support

#endif
