#ifndef BENCH_HYPERVISOR_FUSE_API_H
#define BENCH_HYPERVISOR_FUSE_API_H

// The one place that chooses the version of libfuse's interface.
#define FUSE_USE_VERSION 35
#include <fuse_lowlevel.h>

#endif
