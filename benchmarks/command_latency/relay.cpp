// The least that a program can do to answer a key press with a word: wait by epoll, read one record, write one word.
// The yardstick of the daemon's latency. Usage: benchmark_relay INPUT_DEVICE STATUS_FILE WORD...
// The words are written in turn, one for each key that goes down.

#include "yardstick.h"

#include <cstring>

#include <linux/input.h>
#include <sys/epoll.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 4) {
        return 2;
    }
    Yardstick const files(argv[1], argv[2]);
    if (!files.is_open) {
        return 1;
    }
    int word = 3;
    static_cast<void>(!::write(files.status, "relay", std::strlen("relay")));  // ready
    for (;;) {
        epoll_event event{};
        input_event record{};
        if (::epoll_wait(files.epoll, &event, 1, -1) != 1 ||
            ::read(files.device, &record, sizeof record) != sizeof record) {
            return 1;
        }
        if (record.type == EV_KEY && record.value == 1) {
            static_cast<void>(!::write(files.status, argv[word], std::strlen(argv[word])));
            word = word + 1 < argc ? word + 1 : 3;
        }
    }
}
