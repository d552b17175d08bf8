#ifndef BENCH_HYPERVISOR_FAULT_PLAN_H
#define BENCH_HYPERVISOR_FAULT_PLAN_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>

namespace bench::hypervisor {

/// What a program does to a file of the hypervisor.
enum class Operation : std::uint8_t { open, read, write, ioctl };

/// How an operation goes wrong. A fault that has only a delay is a slow success.
struct Fault {
    int error = 0;                              ///< errno to fail with; 0 for none
    std::optional<std::size_t> accepted_bytes;  ///< of a write: so many bytes are taken, at most
    std::chrono::milliseconds delay{0};         ///< the answer is held back so long
};

/// The faults that one file still has to show. Those of one operation are used in the order in which they were told.
class Fault_plan {
 public:
    /// The fault happens `count` times, one operation each.
    void add(Operation operation, Fault const& fault, std::uint64_t count);

    /// Uses up one fault; a default `Fault` when none is planned.
    Fault take(Operation operation);

    bool has(Operation operation) const;
    void clear() { planned_.clear(); }

 private:
    struct Planned {
        Fault fault;
        std::uint64_t left;
    };
    std::map<Operation, std::deque<Planned>> planned_;
};

}  // namespace bench::hypervisor

#endif
