#include "component_client/event_sources.h"

#include <cerrno>
#include <cstdint>
#include <system_error>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

namespace component_client {

namespace {

int checked(int result, char const* call) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return result;
}

// Reads the counter of an event or timer; neither blocks.
bool take_count(base::Descriptor const& descriptor) {
    std::uint64_t count = 0;
    return ::read(descriptor.number(), &count, sizeof count) > 0;
}

}  // namespace

Bell::Bell() : event_(checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")) {}

void Bell::ring() const {
    std::uint64_t const one = 1;
    [[maybe_unused]] auto const full_is_rung = ::write(event_.number(), &one, sizeof one);
}

void Bell::clear() const {
    take_count(event_);
}

Alarm::Alarm() : timer_(checked(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create")) {}

void Alarm::set(std::chrono::nanoseconds delay) const {
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(delay);
    itimerspec const once{{0, 0}, {seconds.count(), (delay - seconds).count()}};
    ::timerfd_settime(timer_.number(), 0, &once, nullptr);
}

bool Alarm::take() const {
    return take_count(timer_);
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
