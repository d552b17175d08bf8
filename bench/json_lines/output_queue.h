#ifndef BENCH_JSON_LINES_OUTPUT_QUEUE_H
#define BENCH_JSON_LINES_OUTPUT_QUEUE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace bench {

/// Lines on their way to a reader that may be slow or gone. Writing never blocks the caller: what the descriptor does
/// not take now waits here, and once `k_most_waiting` bytes wait, further lines are dropped and counted. When the
/// reader is gone everything is dropped. The descriptor stays the caller's.
class Output_queue {
 public:
    static constexpr std::size_t k_most_waiting = 8UL * 1024 * 1024;

    explicit Output_queue(int descriptor) : descriptor_(descriptor) {}

    /// Queues the line with a line feed and writes as much as can be written at once.
    void send(std::string_view line);

    /// Writes as much as the descriptor takes without blocking.
    void flush();

    /// Goes on flushing until nothing waits or the time is over.
    void drain(std::chrono::milliseconds limit);

    bool waiting() const { return !bytes_.empty(); }
    std::uint64_t dropped() const { return dropped_; }

 private:
    bool writable(int timeout_ms) const;

    int descriptor_;
    std::string bytes_;
    std::uint64_t dropped_{0};
};

}  // namespace bench

#endif
