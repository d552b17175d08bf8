#ifndef BENCH_VEHICLE_WORLD_H
#define BENCH_VEHICLE_WORLD_H

#include <functional>
#include <string>

namespace bench::vehicle {

/// A machine of its own inside this one: own processes, network (only the loopback), host name and IPC, and a root
/// directory made on a temporary file system, in which /etc, /dev, /run, /var, /tmp and /sys are private and
/// everything else is the host's. The host is left as it was, and nothing inside outlives it.
///
/// Inside, /dev/input and /sys/vmctl lead to the two directories of a hypervisor that is mounted on `k_hypervisor`.
inline constexpr char const* k_hypervisor = "/vehicle";

/// Runs `inside` as the first process of such a machine and returns its result. `project` is a directory that is to be
/// seen inside under its own name wherever it lies. Works as root and, where the kernel allows user namespaces, as an
/// ordinary user. Where it is not possible, standard error says what is missing and how to get it, and the result is
/// `k_no_world`. Call it from a process with a single thread.
///
/// A signal that ends a program (SIGHUP, SIGINT, SIGQUIT, SIGTERM) is passed on to `inside`, and ends it with all that
/// it has started unless it handles the signal; the result is then 128 and the signal's number.
inline constexpr int k_no_world = 70;
int run_inside(std::string const& project, std::function<int()> const& inside);

/// Names the machine; inside only.
void set_host_name(std::string const& name);

}  // namespace bench::vehicle

#endif
