#ifndef ARA_LOG_LOG_ENGINE_H
#define ARA_LOG_LOG_ENGINE_H

#include "ara/log/log_context.h"
#include "ara/log/logger.h"
#include "ara/log/message_queue.h"
#include "base/mutex.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace ara::log {

class Log_writer;

/// Where messages end up.
class Log_sink {
 public:
    Log_sink() = default;
    virtual ~Log_sink() = default;
    Log_sink(Log_sink const&) = delete;
    Log_sink& operator=(Log_sink const&) = delete;

    virtual void add_context(Log_context& context) = 0;
    virtual void write(Queued_message const& message) = 0;

    /// Whether a message can be written now. While no sink has room, messages stay in the queue.
    virtual bool has_room() { return true; }

    /// Handed what no sink has had room for when the process ends.
    virtual void miss(Queued_message const& /*message*/) {}

    /// Called each time before the queue is looked into: what the sink has to do besides. That is after messages, after
    /// `wake_writer`, and each period while no sink has room.
    virtual void tend() {}

    /// Whether nothing may be lost on the way to it: then who logs waits while the queue is full.
    virtual bool is_awaited() const { return false; }
};

/// The process's log, made with the first log call and never destroyed. The way of a message:
///
///     LogInfo() << ...  --submit-->  queue  --drain-->  each sink: DLT, console, file
///
/// A context is a named source of messages with a level; a message is in the context of its logger and stays in the
/// queue while no sink has room. `InitLogging` adds the sinks and starts the writer, a thread that drains; at the exit
/// of the process it is stopped and what is left is drained. Until then messages are kept.
///
/// Threads: `submit` any, signal handlers included; everything else takes a mutex and is for ordinary threads.
class Log_engine {
 public:
    static Log_engine& instance();

    Logger& default_logger() noexcept { return *default_logger_; }
    Logger& logger(std::string const& id, std::string const& description, LogLevel level);

    void submit(Log_context const& context, LogLevel level, Argument_encoder const& arguments) noexcept;

    /// Messages that found the queue full. Any thread.
    std::uint64_t dropped() const noexcept { return dropped_.load(std::memory_order_relaxed); }

    /// Adds a sink that gets everything that is consumed from now on, until it is removed or the process ends.
    void add_sink(std::unique_ptr<Log_sink> sink, LogLevel default_level);
    std::unique_ptr<Log_sink> remove_sink(Log_sink const& sink);

    /// Starts the writer thread. Throws `std::system_error` when there can't be one more.
    void start_writer();

    /// Has it look at once, and tend its sinks. Any thread, signal handlers included; nothing without a writer.
    void wake_writer() noexcept;

    /// Ends it after everything queued has been written, as long as the sinks have room (see Exit_patience).
    void stop_writer();

    /// Hands everything queued to the sinks, but not what comes meanwhile: others may want the log, too. False when
    /// something is left, the report of dropped messages included.
    bool drain();

 private:
    Log_engine();

    void deliver(Queued_message const& message) REQUIRES(consumer_);
    void give_up_the_rest();
    bool report_drops() REQUIRES(consumer_);  ///< false when there are some and no sink has room for the report
    bool has_room() REQUIRES(consumer_);
    void decide_about_waiting() REQUIRES(consumer_);

    Message_queue queue_;
    std::atomic<std::uint64_t> dropped_{0};
    std::atomic<bool> wait_when_full_{false};
    std::atomic<bool> is_stuck_{false};  ///< no sink had room: the writer looks each period, waking it is of no use
    std::atomic<Log_writer*> writer_{nullptr};

    base::Mutex consumer_;  ///< of the queue's reading end, too
    std::uint64_t reported_drops_ GUARDED_BY(consumer_){0};
    std::vector<std::unique_ptr<Logger>> loggers_ GUARDED_BY(consumer_);
    std::vector<std::unique_ptr<Log_sink>> sinks_ GUARDED_BY(consumer_);
    std::unique_ptr<Queued_message> const message_ PT_GUARDED_BY(consumer_);  ///< the one that is being delivered
    Logger* default_logger_;                                                  ///< set by the constructor alone
};

}  // namespace ara::log

#endif
