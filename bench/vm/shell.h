#ifndef BENCH_VM_SHELL_H
#define BENCH_VM_SHELL_H

#include "bench/vm/port.h"

#include <chrono>
#include <functional>
#include <string>
#include <utility>

namespace bench::vm {

/// An operator's hand in the machine: a root shell on a port.
class Shell {
 public:
    struct Result {
        int status;
        std::string output;
    };

    /// `meanwhile` is done again and again while a command runs: a machine whose lines nobody reads comes to a stop.
    Shell(std::string const& path, std::function<void()> meanwhile) : port_(path), meanwhile_(std::move(meanwhile)) {}

    /// Runs one line and returns what it printed. Throws `std::runtime_error` when it does not end in time: the machine
    /// is not up yet, or the command hangs.
    Result run(std::string const& line, std::chrono::milliseconds limit = std::chrono::seconds(60));

    /// As `run`, for commands whose result nobody waits for. What they print is left out of later results.
    void start(std::string const& line);

 private:
    Port port_;
    std::function<void()> const meanwhile_;
    int unawaited_{0};
};

}  // namespace bench::vm

#endif
