#ifndef BENCH_VEHICLE_NEW_ROOT_H
#define BENCH_VEHICLE_NEW_ROOT_H

#include <string>

namespace bench::vehicle {

/// Keeps every mount that the calling process makes from now on to its own mount namespace, which is to be a new one.
/// Also where its root directory is no mount point, as in a chroot: there it becomes one. Throws `std::runtime_error`.
void make_mounts_private();

/// Builds the root directory of the machine and moves the calling process into it. For the first process of namespaces
/// of its own. Throws `std::runtime_error`.
void move_into_new_root(std::string const& project);

}  // namespace bench::vehicle

#endif
