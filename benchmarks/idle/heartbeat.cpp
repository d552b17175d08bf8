// The least that a supervised program can do while nothing happens: every 100 ms wait for input and report that it is
// alive. The yardstick of the idle daemon. Usage: benchmark_heartbeat INPUT_DEVICE STATUS_FILE, with NOTIFY_SOCKET set.

#include "yardstick.h"

#include <cstdlib>
#include <cstring>

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int k_period_ms = 100;

sockaddr_un notify_address() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (char const* const path = std::getenv("NOTIFY_SOCKET")) {
        std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    }
    return address;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    Yardstick const files(argv[1], argv[2]);
    if (!files.is_open) {
        return 1;
    }
    sockaddr_un const address = notify_address();
    static_cast<void>(!::write(files.status, "running", std::strlen("running")));
    for (;;) {
        // A socket for each report, as sd_notify has.
        int const socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        ::sendto(socket, "WATCHDOG=1", std::strlen("WATCHDOG=1"), 0, reinterpret_cast<sockaddr const*>(&address),
                 sizeof address);
        ::close(socket);
        epoll_event event{};
        ::epoll_wait(files.epoll, &event, 1, k_period_ms);
    }
}
