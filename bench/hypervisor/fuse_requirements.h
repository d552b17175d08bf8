#ifndef BENCH_HYPERVISOR_FUSE_REQUIREMENTS_H
#define BENCH_HYPERVISOR_FUSE_REQUIREMENTS_H

#include <string>

namespace bench::hypervisor {

/// What this machine lacks for a FUSE mount by this process, and how to get it; empty when nothing is known to lack.
std::string missing_for_fuse();

}  // namespace bench::hypervisor

#endif
