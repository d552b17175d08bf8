#include "support/log_capture.h"

#include "ara/log/argument_decoder.h"
#include "ara/log/log_engine.h"
#include "base/mutex.h"
#include "base/signals.h"
#include "support/log_tap.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace test_support {

using ara::log::Log_engine;
using ara::log::LogLevel;
using ara::log::Queued_message;

bool operator==(Log_message const& left, Log_message const& right) {
    return left.level == right.level && left.context == right.context && left.arguments == right.arguments;
}

std::ostream& operator<<(std::ostream& out, Log_message const& message) {
    out << "level " << static_cast<int>(message.level) << ' ' << message.context;
    for (auto const& argument : message.arguments) {
        out << " [" << ara::log::to_text({argument}) << ']';
    }
    return out;
}

class Log_capture::Impl {
 public:
    Impl() : drainer_(start_drainer()), tap_([this](Queued_message const& message) { add(message); }) {}

    ~Impl() {
        done_ = true;
        drainer_.join();
    }

    std::vector<Log_message> messages() {
        Log_engine::instance().drain();
        base::Lock_guard const lock(mutex_);
        return messages_;
    }

    void clear() {
        Log_engine::instance().drain();
        base::Lock_guard const lock(mutex_);
        messages_.clear();
    }

 private:
    void add(Queued_message const& message) {
        auto const& header = message.header;
        base::Lock_guard const lock(mutex_);
        messages_.push_back(
            {header.level, header.context->id, ara::log::decode_arguments(message.arguments.data(), header.size)});
    }

    // Producers wait while the queue is full, so somebody has to empty it who is never interrupted by a producer: the
    // thread inherits the blocked signals, because a handler may log before the thread's first statement.
    std::thread start_drainer() {
        base::All_signals_blocked const blocked;
        return std::thread([this] { drain_until_done(); });
    }

    void drain_until_done() {
        while (!done_) {
            Log_engine::instance().drain();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    base::Mutex mutex_;
    std::vector<Log_message> messages_ GUARDED_BY(mutex_);
    std::atomic<bool> done_{false};
    std::thread drainer_;
    Log_tap tap_;  // goes first
};

Log_capture::Log_capture() : impl_(std::make_unique<Impl>()) {}
Log_capture::~Log_capture() = default;
std::vector<Log_message> Log_capture::messages() {
    return impl_->messages();
}
void Log_capture::clear() {
    impl_->clear();
}

std::vector<Log_message> Log_capture::messages(LogLevel level) {
    auto all = messages();
    all.erase(std::remove_if(all.begin(), all.end(), [&](auto const& message) { return message.level != level; }),
              all.end());
    return all;
}

std::vector<Log_message> Log_capture::at_least(LogLevel level) {
    auto all = messages();
    all.erase(std::remove_if(all.begin(), all.end(), [&](auto const& message) { return message.level > level; }),
              all.end());
    return all;
}

}  // namespace test_support
