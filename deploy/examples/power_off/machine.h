#ifndef POWER_OFF_MACHINE_H
#define POWER_OFF_MACHINE_H

#include <chrono>
#include <memory>
#include <string>

namespace power_off {

using Clock = std::chrono::steady_clock;

/// A process of this machine that stays the same one, however often its number is given away again.
class Process {
 public:
    Process() = default;
    virtual ~Process() = default;
    Process(Process const&) = delete;
    Process& operator=(Process const&) = delete;

    virtual void terminate() = 0;
    virtual void kill() = 0;

    /// Whether it has ended by that time.
    virtual bool await_end(Clock::time_point deadline) = 0;
};

/// What the power-off service does to the machine.
class Machine {
 public:
    Machine() = default;
    virtual ~Machine() = default;
    Machine(Machine const&) = delete;
    Machine& operator=(Machine const&) = delete;

    /// The process of that name, the oldest of several; empty when there is none.
    virtual std::unique_ptr<Process> find(std::string const& name) = 0;

    /// Writes out what the file systems hold and switches the power off, by the deadline at the latest. Returns only
    /// when even that failed.
    virtual void power_off(Clock::time_point deadline) = 0;
};

}  // namespace power_off

#endif
