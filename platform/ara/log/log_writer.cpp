#include "ara/log/log_writer.h"

#include "base/signals.h"

#include <array>
#include <utility>

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace ara::log {

namespace {

timespec to_timespec(std::chrono::nanoseconds time) {
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), (time - seconds).count()};
}

void clear(int descriptor) {
    std::uint64_t count = 0;
    [[maybe_unused]] auto const nothing_is_clear = ::read(descriptor, &count, sizeof count);
}

}  // namespace

Log_writer::Log_writer(std::function<bool()> drain, std::chrono::nanoseconds period)
    : drain_(std::move(drain)),
      period_(to_timespec(period)),
      event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      alarm_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {}

void Log_writer::start() {
    base::All_signals_blocked const blocked;
    thread_ = std::thread([this] { run(); });
    ::pthread_setname_np(thread_.native_handle(), "log-writer");
}

void Log_writer::run() {
    bool sleeps = false;
    while (!stopping_.load()) {
        wait(sleeps);
        wake_pending_ = false;
        alarm_is_set_ = !can_be_woken();
        sleeps = drain_() && can_be_woken();
    }
}

void Log_writer::wait(bool sleeps) {
    std::array<pollfd, 2> wakers{{{event_.number(), POLLIN, 0}, {alarm_.number(), POLLIN, 0}}};
    ::ppoll(wakers.data(), wakers.size(), sleeps ? nullptr : &period_, nullptr);
    for (auto const& waker : wakers) {
        if (waker.revents != 0) {
            clear(waker.fd);
        }
    }
}

void Log_writer::wake() noexcept {
    if (!wake_pending_.exchange(true) && ::eventfd_write(event_.number(), 1) != 0) {
        wake_pending_ = false;  // the next one tries again
    }
}

void Log_writer::wake_in_a_period() noexcept {
    if (alarm_is_set_.load() || alarm_is_set_.exchange(true)) {
        return;
    }
    itimerspec const in_a_period{{}, period_};
    if (::timerfd_settime(alarm_.number(), 0, &in_a_period, nullptr) != 0) {
        alarm_is_set_ = false;
        wake();
    }
}

void Log_writer::stop() {
    stopping_ = true;
    wake_pending_ = false;
    wake();
    if (thread_.joinable()) {
        thread_.join();
    }
}

}  // namespace ara::log
