#include "ara/log/log_engine.h"

#include "ara/log/exit_patience.h"
#include "ara/log/log_writer.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <thread>

namespace ara::log {

namespace {

// DLT's time: units of 0.1 ms since boot.
std::uint32_t uptime() noexcept {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_sec * 10000 + now.tv_nsec / 100000);
}

}  // namespace

Log_engine& Log_engine::instance() {
    static auto& engine = *new Log_engine;  // destructors of static objects log too
    return engine;
}

Log_engine::Log_engine() : message_(std::make_unique<Queued_message>()) {
    loggers_.push_back(std::make_unique<Logger>("DFLT", "Default context", LogLevel::kVerbose));
    default_logger_ = loggers_.front().get();
}

Logger& Log_engine::logger(std::string const& id, std::string const& description, LogLevel level) {
    base::Lock_guard const lock(consumer_);
    auto const name = id.substr(0, k_id_length);
    auto const known = std::find_if(loggers_.begin(), loggers_.end(),
                                    [&](auto const& logger) { return logger->context().id == name; });
    if (known != loggers_.end()) {
        return **known;
    }
    loggers_.push_back(std::make_unique<Logger>(name, description, level));
    auto& context = loggers_.back()->context();
    for (auto const& sink : sinks_) {
        sink->add_context(context);
    }
    return *loggers_.back();
}

void Log_engine::submit(Log_context const& context, LogLevel level, Argument_encoder const& arguments) noexcept {
    auto const saved_errno = errno;
    Message_header const header{&context, uptime(), static_cast<std::uint16_t>(arguments.size()), arguments.count(),
                                level};
    while (!queue_.push(header, arguments.data())) {
        if (!wait_when_full_.load(std::memory_order_relaxed)) {
            dropped_.fetch_add(1);
            break;
        }
        std::this_thread::yield();
    }
    bool const is_filling = queue_.size() > Message_queue::k_slots / 2 && !is_stuck_.load(std::memory_order_relaxed);
    if (level <= LogLevel::kError || is_filling) {
        wake_writer();
    } else if (auto* const writer = writer_.load(); writer != nullptr) {
        writer->wake_in_a_period();
    }
    errno = saved_errno;
}

void Log_engine::add_sink(std::unique_ptr<Log_sink> sink, LogLevel default_level) {
    base::Lock_guard const lock(consumer_);
    default_logger_->context().own_threshold = static_cast<std::int8_t>(default_level);
    default_logger_->context().threshold = static_cast<std::int8_t>(default_level);
    for (auto const& logger : loggers_) {
        sink->add_context(logger->context());
    }
    sinks_.push_back(std::move(sink));
    decide_about_waiting();
}

std::unique_ptr<Log_sink> Log_engine::remove_sink(Log_sink const& sink) {
    base::Lock_guard const lock(consumer_);
    auto const place =
        std::find_if(sinks_.begin(), sinks_.end(), [&sink](auto const& known) { return known.get() == &sink; });
    auto removed = std::move(*place);
    sinks_.erase(place);
    decide_about_waiting();
    return removed;
}

void Log_engine::decide_about_waiting() {
    wait_when_full_ = std::any_of(sinks_.begin(), sinks_.end(), [](auto const& sink) { return sink->is_awaited(); });
}

bool Log_engine::drain() {
    base::Lock_guard const lock(consumer_);
    for (auto const& sink : sinks_) {
        sink->tend();
    }
    for (std::size_t taken = 0; taken < Message_queue::k_slots && has_room() && queue_.pop(*message_); ++taken) {
        deliver(*message_);
    }
    is_stuck_ = !has_room();
    bool const all_drops_are_told = report_drops();
    return queue_.size() == 0 && all_drops_are_told;
}

bool Log_engine::has_room() {
    return sinks_.empty() ||
           std::any_of(sinks_.begin(), sinks_.end(), [](auto const& sink) { return sink->has_room(); });
}

void Log_engine::deliver(Queued_message const& message) {
    for (auto const& sink : sinks_) {
        sink->write(message);
    }
}

bool Log_engine::report_drops() {
    auto const dropped = dropped_.load();
    if (dropped == reported_drops_) {
        return true;
    }
    if (!has_room()) {
        return false;
    }
    Argument_encoder arguments;
    arguments.add_text("Log queue was full, messages dropped: ");
    arguments.add_number(dropped - reported_drops_);
    reported_drops_ = dropped;
    message_->header = {&default_logger_->context(), uptime(), static_cast<std::uint16_t>(arguments.size()),
                        arguments.count(), LogLevel::kWarn};
    std::copy_n(arguments.data(), arguments.size(), message_->arguments.begin());
    deliver(*message_);
    return true;
}

void Log_engine::start_writer() {
    if (writer_.load() == nullptr) {
        auto* const writer = new Log_writer([this] { return drain() && !is_stuck_; });
        writer_ = writer;  // who logs has to find it, since from its first look on it sleeps
        writer->start();
    }
}

void Log_engine::stop_writer() {
    if (auto* const writer = writer_.load(); writer != nullptr) {
        writer->stop();  // the object stays: a signal handler may still be about to wake it
    }
    Exit_patience patience;
    while (!drain() && patience.waits_for(queue_.size())) {
    }
    give_up_the_rest();
}

void Log_engine::give_up_the_rest() {
    base::Lock_guard const lock(consumer_);
    while (queue_.pop(*message_)) {
        for (auto const& sink : sinks_) {
            sink->miss(*message_);
        }
    }
}

void Log_engine::wake_writer() noexcept {
    if (auto* const writer = writer_.load(); writer != nullptr) {
        writer->wake();
    }
}

}  // namespace ara::log
