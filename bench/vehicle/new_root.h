#ifndef BENCH_VEHICLE_NEW_ROOT_H
#define BENCH_VEHICLE_NEW_ROOT_H

#include <string>

namespace bench::vehicle {

/// Builds the root directory of the machine and moves the calling process into it. For the first process of namespaces
/// of its own. Throws `std::runtime_error`.
void move_into_new_root(std::string const& project);

}  // namespace bench::vehicle

#endif
