#include "component_client/event_sources.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace component_client {

namespace {

int checked(int result, char const* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

}  // namespace

Alarm::Alarm() : timer_(checked(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create")) {}

void Alarm::set(std::chrono::nanoseconds delay) const {
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(delay);
    itimerspec const once{{0, 0}, {seconds.count(), (delay - seconds).count()}};
    ::timerfd_settime(timer_.number(), 0, &once, nullptr);
}

bool Alarm::take() const {
    std::uint64_t count = 0;
    return ::read(timer_.number(), &count, sizeof count) > 0;
}

Watch::Watch() : set_(checked(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")) {}

void Watch::add(int watched) const {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = watched;
    checked(::epoll_ctl(set_.number(), EPOLL_CTL_ADD, watched, &event), "epoll_ctl");
}

void Watch::want_write(int watched, bool wanted) const {
    epoll_event event{};
    event.events = wanted ? EPOLLIN | EPOLLOUT : EPOLLIN;
    event.data.fd = watched;
    checked(::epoll_ctl(set_.number(), EPOLL_CTL_MOD, watched, &event), "epoll_ctl");
}

void Watch::wait() const {
    epoll_event event{};
    while (::epoll_wait(set_.number(), &event, 1, -1) < 0 && errno == EINTR) {
    }
}

}  // namespace component_client
