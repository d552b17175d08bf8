#ifndef BENCH_JSON_LINES_CONTROL_LOOP_H
#define BENCH_JSON_LINES_CONTROL_LOOP_H

#include "bench/json_lines/command_table.h"

#include <chrono>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

struct sd_event;

namespace bench {

/// The one thread of a player: reads commands line by line, answers them, sends events, and calls whoever waits for a
/// descriptor or for a time. Everything happens on the thread that calls `run()`.
///
/// The loop ends when the input ends, with a signal of base/end_signals.h that is not ignored (construction blocks them
/// for the calling thread) or by `stop()`. Construction also ignores SIGPIPE: a reader of the events that went away is
/// not the end.
class Control_loop {
 public:
    /// Reads commands from one descriptor and writes to the other; both stay the caller's. The table must outlive the
    /// loop and may be filled later. Throws `std::system_error` when the system gives no event loop.
    Control_loop(int input, int output, Command_table const& commands);
    ~Control_loop();
    Control_loop(Control_loop const&) = delete;
    Control_loop& operator=(Control_loop const&) = delete;

    /// Sends {"event":NAME,"t":now,...details}; a "t" among the details is kept.
    void event(std::string const& name, nlohmann::json details);

    /// Calls `ready` whenever the descriptor can be read, for the rest of the loop's life.
    void watch(int descriptor, std::function<void()> ready);

    /// Calls `action` once after the delay.
    void after(std::chrono::milliseconds delay, std::function<void()> action);

    /// Runs until the loop ends; returns the exit status, 0 unless `stop` gave another.
    int run();
    void stop(int exit_status);

    /// For libraries that attach themselves to an event loop.
    sd_event* native();

 private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace bench

#endif
