#ifndef BENCH_VM_RUNNING_H
#define BENCH_VM_RUNNING_H

#include "base/temporary_directory.h"
#include "bench/process/child_process.h"
#include "bench/vm/port.h"
#include "bench/vm/virtual_machine.h"

#include <functional>
#include <utility>

namespace bench::vm {

/// What there is only while the machine is on.
struct Virtual_machine::Running {
    /// `hear_news` reads what has arrived.
    Running(Machine_options const& options, std::function<void()> hear_news)
        : emulator(command_line(options, directory.path().string(), this_host()), {}),
          control(directory.file("control")),
          log(directory.file("log")),
          state(directory.file("state")),
          restart(directory.file("restart")),
          power_off(directory.file("poweroff")),
          journal(directory.file("journal")),
          shell(directory.file("shell"), std::move(hear_news)) {}

    base::Temporary_directory directory;
    Child_process emulator;
    Qmp control;
    Port log;
    Port state;
    Port restart;
    Port power_off;
    Port journal;
    Shell shell;
};

}  // namespace bench::vm

#endif
