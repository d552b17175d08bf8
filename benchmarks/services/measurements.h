#ifndef BENCHMARKS_SERVICES_MEASUREMENTS_H
#define BENCHMARKS_SERVICES_MEASUREMENTS_H

#include "bench/vehicle/vehicle.h"

namespace benchmarks {

/// Instances "1" to this of the COM-alive service in the benchmark's configuration.
inline constexpr int k_applications = 16;

/// One more, which no daemon offers: a process whose handlers do nothing.
inline constexpr int k_empty_instance = 99;

/// Starts the daemon again and again, and prints the time from just before fork until a client that waits has found all
/// of its services.
void measure_all_found(bench::vehicle::Vehicle& vehicle);

/// Starts the daemon once, and tells what a call takes that changes nothing, and one that has the network manager
/// called, beside one to a handler that does nothing; and those of 16 applications at once beside those of one.
void measure_requests(bench::vehicle::Vehicle& vehicle);

/// Ends the daemon and waits for it.
void stop_daemon(bench::vehicle::Vehicle& vehicle);

}  // namespace benchmarks

#endif
