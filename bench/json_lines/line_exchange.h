#ifndef BENCH_JSON_LINES_LINE_EXCHANGE_H
#define BENCH_JSON_LINES_LINE_EXCHANGE_H

#include "bench/json_lines/command_table.h"
#include "bench/json_lines/event_source.h"
#include "bench/json_lines/line_splitter.h"
#include "bench/json_lines/output_queue.h"

#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>

namespace bench {

/// What a player and its user say to each other: answers each line of the input by the command table, and sends lines
/// as fast as the reader takes them. The end of the input ends the loop. On the loop's thread.
class Line_exchange {
 public:
    /// Both descriptors stay the caller's, the table must outlive this.
    Line_exchange(int input, int output, Command_table const& commands);

    /// Begins to read; throws `std::system_error` when the loop takes no more. The loop must outlive this.
    void attach(sd_event* loop);

    /// Sends a message as one line; when lines were dropped, an event "lost" with their number follows.
    void send(nlohmann::json const& message);

    /// Goes on sending what waits until the time is over.
    void drain(std::chrono::milliseconds limit) { queue_.drain(limit); }

 private:
    void attach_input();
    void attach_output();
    void receive();
    void answer_waiting_lines();
    static int on_input(sd_event_source* source, int descriptor, std::uint32_t events, void* self);
    static int on_input_always(sd_event_source* source, void* self);
    static int on_output(sd_event_source* source, int descriptor, std::uint32_t events, void* self);

    int const input_;
    int const output_;
    Command_table const& commands_;
    Output_queue queue_;
    Line_splitter lines_;
    std::uint64_t reported_drops_{0};
    sd_event* loop_{nullptr};
    Event_source input_source_;
    Event_source output_source_;  ///< null when the output can't be waited for, as a regular file
};

}  // namespace bench

#endif
