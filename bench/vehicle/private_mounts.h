#ifndef BENCH_VEHICLE_PRIVATE_MOUNTS_H
#define BENCH_VEHICLE_PRIVATE_MOUNTS_H

#include <string>

namespace bench::vehicle {

/// Keeps every mount that the calling process makes from now on to its own mount namespace, which is to be a new one.
/// Also where its root directory is no mount point, as in a chroot: there it becomes one. Throws `std::runtime_error`.
void make_mounts_private();

/// Throws `std::runtime_error` with the reason in `errno` and what would help.
[[noreturn]] void throw_mount_error(std::string const& target);

}  // namespace bench::vehicle

#endif
