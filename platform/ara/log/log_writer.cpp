#include "ara/log/log_writer.h"

#include "base/signals.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace ara::log {

Log_engine::Writer::Writer(std::function<void()> drain)
    : drain_(std::move(drain)), event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    base::All_signals_blocked const blocked;
    thread_ = std::thread([this] { run(); });
    ::pthread_setname_np(thread_.native_handle(), "log-writer");
}

void Log_engine::Writer::run() {
    while (!stopping_.load(std::memory_order_acquire)) {
        pollfd woken{event_.number(), POLLIN, 0};
        if (::poll(&woken, 1, static_cast<int>(k_period.count())) > 0) {
            eventfd_t count = 0;
            ::eventfd_read(event_.number(), &count);
            wake_pending_.store(false, std::memory_order_release);
        }
        drain_();
    }
}

void Log_engine::Writer::wake() noexcept {
    if (!wake_pending_.exchange(true, std::memory_order_acq_rel)) {
        ::eventfd_write(event_.number(), 1);
    }
}

void Log_engine::Writer::stop() {
    stopping_.store(true, std::memory_order_release);
    wake_pending_.store(false, std::memory_order_release);
    wake();
    if (thread_.joinable()) {
        thread_.join();
    }
}

}  // namespace ara::log
