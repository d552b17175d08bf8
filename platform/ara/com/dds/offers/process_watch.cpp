#include "ara/com/dds/offers/process_watch.h"

#include <cerrno>
#include <cstddef>
#include <system_error>

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ara::com::dds {

namespace {

constexpr pid_t k_nobody = 0;

// More processes than find a place in the domain of a machine. Each takes a descriptor.
constexpr std::size_t k_most_watched = 64;

// The process is ready for reading once it has ended.
int open_process(pid_t process) {
    return static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
}

// Also what is there already, from a start that came no further.
bool add(int events, int descriptor, pid_t process) {
    epoll_event interest{};
    interest.events = EPOLLIN;
    interest.data.fd = process;
    return ::epoll_ctl(events, EPOLL_CTL_ADD, descriptor, &interest) == 0 || errno == EEXIST;
}

}  // namespace

Process_watch::~Process_watch() {
    if (thread_.joinable()) {
        while (::eventfd_write(stop_, 1) != 0 && errno == EINTR) {
        }
        thread_.join();
    }
    for (auto const& [process, descriptor] : watched_) {
        ::close(descriptor);
    }
    for (auto const descriptor : {events_, stop_}) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
}

bool Process_watch::watch(pid_t process) {
    base::Lock_guard const lock(mutex_);
    if (watched_.count(process) != 0) {
        return true;
    }
    auto const descriptor = open_process(process);
    if (descriptor < 0) {
        return errno != ESRCH;
    }
    if (watched_.size() >= k_most_watched || !start() || !add(events_, descriptor, process)) {
        ::close(descriptor);
        return true;
    }
    watched_[process] = descriptor;
    return true;
}

// What is missing is tried again with the next process.
bool Process_watch::start() {
    if (thread_.joinable()) {
        return true;
    }
    if (events_ < 0) {
        events_ = ::epoll_create1(EPOLL_CLOEXEC);
    }
    if (stop_ < 0) {
        stop_ = ::eventfd(0, EFD_CLOEXEC);
    }
    if (events_ < 0 || stop_ < 0 || !add(events_, stop_, k_nobody)) {
        return false;
    }
    try {
        thread_ = std::thread([this] { run(); });
    } catch (std::system_error const&) {
        return false;
    }
    return true;
}

void Process_watch::run() {
    ::pthread_setname_np(::pthread_self(), "com-watch");
    for (;;) {
        epoll_event event{};
        if (::epoll_wait(events_, &event, 1, -1) != 1) {
            continue;
        }
        if (event.data.fd == k_nobody) {
            return;
        }
        forget(event.data.fd);
        ended_(event.data.fd);
    }
}

void Process_watch::forget(pid_t process) {
    base::Lock_guard const lock(mutex_);
    auto const watched = watched_.find(process);
    if (watched == watched_.end()) {
        return;
    }
    // Closing alone does not end the interest while a process that was just forked has a copy.
    ::epoll_ctl(events_, EPOLL_CTL_DEL, watched->second, nullptr);
    ::close(watched->second);
    watched_.erase(watched);
}

}  // namespace ara::com::dds
