// The least that a program can do to answer a key press with a word: wait by epoll, read one record, write one word.
// The yardstick of the daemon's latency. Usage: benchmark_relay INPUT_DEVICE STATUS_FILE WORD...
// The words are written in turn, one for each key that goes down.

#include <array>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <linux/input.h>
#include <sys/epoll.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 4) {
        return 2;
    }
    int const device = ::open(argv[1], O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    int const status = ::open(argv[2], O_WRONLY | O_TRUNC | O_CLOEXEC);
    int const epoll = ::epoll_create1(EPOLL_CLOEXEC);
    epoll_event wanted{};
    wanted.events = EPOLLIN;
    wanted.data.fd = device;
    if (device < 0 || status < 0 || ::epoll_ctl(epoll, EPOLL_CTL_ADD, device, &wanted) != 0) {
        return 1;
    }
    int word = 3;
    static_cast<void>(!::write(status, "relay", std::strlen("relay")));  // ready
    for (;;) {
        epoll_event event{};
        input_event record{};
        if (::epoll_wait(epoll, &event, 1, -1) != 1 || ::read(device, &record, sizeof record) != sizeof record) {
            return 1;
        }
        if (record.type == EV_KEY && record.value == 1) {
            static_cast<void>(!::write(status, argv[word], std::strlen(argv[word])));
            word = word + 1 < argc ? word + 1 : 3;
        }
    }
}
