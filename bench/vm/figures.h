#ifndef BENCH_VM_FIGURES_H
#define BENCH_VM_FIGURES_H

#include "bench/vm/virtual_machine.h"

namespace bench::vm {

/// Boots the machine some times and prints what docs/target.md tells of it: times by the machine's own clock, memory
/// and processor time of the daemon at rest. False when the machine did not come up.
bool print_figures(Virtual_machine& machine);

}  // namespace bench::vm

#endif
