#ifndef TESTS_FAULTS_BUSY_THREADS_H
#define TESTS_FAULTS_BUSY_THREADS_H

#include <functional>
#include <string>

#include <sys/types.h>

namespace faults {

/// The number and name of a thread that has something to do all the time; empty when none has. `wait` passes some time
/// and is called again and again. What is asked for is nine tenths of two times in a row, the second one longer: where
/// many wait for a processor, a thread of a process in order waits for it as well, but not that long.
std::string busy_thread(pid_t pid, std::function<void()> const& wait);

}  // namespace faults

#endif
