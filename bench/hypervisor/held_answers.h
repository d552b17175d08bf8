#ifndef BENCH_HYPERVISOR_HELD_ANSWERS_H
#define BENCH_HYPERVISOR_HELD_ANSWERS_H

#include "bench/json_lines/control_loop.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>

namespace bench::hypervisor {

/// Answers to programs that a fault holds back for a time. Whatever is still held at the end is given then, so that no
/// program hangs and no request is lost. Must outlive the loop's run.
class Held_answers {
 public:
    explicit Held_answers(Control_loop& loop) : loop_(loop) {}

    /// Gives the answer at once when the delay is 0.
    void give_after(std::chrono::milliseconds delay, std::function<void()> answer);
    void give_all_now();

 private:
    void give(std::uint64_t number);

    Control_loop& loop_;
    std::map<std::uint64_t, std::function<void()>> held_;
    std::uint64_t next_{0};
};

}  // namespace bench::hypervisor

#endif
