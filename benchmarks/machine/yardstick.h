#ifndef BENCHMARKS_MACHINE_YARDSTICK_H
#define BENCHMARKS_MACHINE_YARDSTICK_H

#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>

/// What the least program has open that does a part of the daemon's work: the input device, the status file, and an
/// epoll that wakes at input. The process's end closes them.
struct Yardstick {
    Yardstick(char const* device_path, char const* status_path)
        : device(::open(device_path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)),
          status(::open(status_path, O_WRONLY | O_TRUNC | O_CLOEXEC)),
          epoll(::epoll_create1(EPOLL_CLOEXEC)) {
        epoll_event wanted{};
        wanted.events = EPOLLIN;
        is_open = device >= 0 && status >= 0 && ::epoll_ctl(epoll, EPOLL_CTL_ADD, device, &wanted) == 0;
    }

    int device;
    int status;
    int epoll;
    bool is_open{false};
};

#endif
