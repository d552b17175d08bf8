#ifndef BENCH_HYPERVISOR_FAULT_PLAN_H
#define BENCH_HYPERVISOR_FAULT_PLAN_H

#include "bench/json_lines/plan.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace bench::hypervisor {

/// What a program does to a file of the hypervisor.
enum class Operation : std::uint8_t { open, read, write, ioctl };

/// How an operation goes wrong. A fault that has only a delay is a slow success.
struct Fault {
    int error{0};                               ///< errno to fail with; 0 for none
    std::optional<std::size_t> accepted_bytes;  ///< of a write: so many bytes are taken, at most
    std::chrono::milliseconds delay{0};         ///< the answer is held back so long
};

/// The faults that one file still has to show.
using Fault_plan = Plan<Fault, Operation>;

}  // namespace bench::hypervisor

#endif
