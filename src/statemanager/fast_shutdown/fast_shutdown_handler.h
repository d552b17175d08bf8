#ifndef STATEMANAGER_FAST_SHUTDOWN_FAST_SHUTDOWN_HANDLER_H
#define STATEMANAGER_FAST_SHUTDOWN_FAST_SHUTDOWN_HANDLER_H

#include <chrono>
#include <string>

namespace ximo::ap::statemanager::fast_shutdown {

/// Hands a quick power-off to the power-off service, by lines of text into its command channel.
///
/// The channel is a FIFO that the service reads; it must be listening when the handler is made, or the fast way stays
/// closed. On the way into a suspend `process_lookup` lets the service find the persistency daemon's process;
/// `start_fast_shutdown` then has it terminated and the power switched off. Each command is one `write`, without
/// waiting, repeating or reading an answer. Used by the driver's thread alone.
class Fast_shutdown_handler {
 public:
    explicit Fast_shutdown_handler(std::string const& channel);
    virtual ~Fast_shutdown_handler();
    Fast_shutdown_handler(Fast_shutdown_handler const&) = delete;
    Fast_shutdown_handler& operator=(Fast_shutdown_handler const&) = delete;

    /// "lookup vyn_per_daemon"
    virtual void process_lookup() const;

    /// "terminate", then "poweroff" with the time that the service may take; nothing when the channel is not open.
    virtual void start_fast_shutdown(std::chrono::milliseconds timeout) const;

    /// The channel could be opened.
    virtual bool is_possible() const;

    void shutdown_pm() const;
    void call_exit_app(std::chrono::milliseconds timeout) const;

    /// Makes one write of the whole command and reports its outcome; an error when the channel is not open.
    void write_command(std::string const& command) const;

    /// Logs the outcome of one write of `command`: `written` is the byte count, or negative with the reason in `errno`.
    /// Throws `std::out_of_range` for a write that took nothing of a command.
    void write_info(long& written, std::string const& command) const;

 private:
    int descriptor_{-1};
    bool open_{false};
};

}  // namespace ximo::ap::statemanager::fast_shutdown

#endif
