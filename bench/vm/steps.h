#ifndef BENCH_VM_STEPS_H
#define BENCH_VM_STEPS_H

#include "bench/tour/tour.h"

#include <vector>

namespace bench::vm {

/// The way of the virtual machine through its states, from power on to power off, in two lives.
std::vector<tour::Step> steps();

}  // namespace bench::vm

#endif
