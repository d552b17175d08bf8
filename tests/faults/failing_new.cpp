// Preloaded into the daemon: each allocation asks the kernel for a call that it does not have, at which a watcher can
// stop the thread (fault_at_call.cpp) and let the allocation fail.

#include "allocation.h"

#include <cerrno>
#include <cstdlib>
#include <new>

#include <unistd.h>

void* operator new(std::size_t size) {  // NOLINT(cert-dcl54-cpp,misc-new-delete-overloads): its delete is free
    int const saved_errno = errno;
    bool const fails = ::syscall(faults::k_allocation) == -1 && errno == ENOMEM;
    errno = saved_errno;
    void* const memory = fails ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
