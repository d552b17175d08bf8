// Loaded before the C library it has a program tell what memory it has: each byte of its standard input is answered on
// its standard output, on a thread that no signal is delivered to.

#include "benchmarks/machine/process_memory.h"

#include <csignal>
#include <thread>

#include <pthread.h>

namespace {

__attribute__((constructor)) void begin_to_tell() {
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread(benchmarks::answer_with_memory).detach();
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
