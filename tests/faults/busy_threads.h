#ifndef TESTS_FAULTS_BUSY_THREADS_H
#define TESTS_FAULTS_BUSY_THREADS_H

#include <functional>
#include <string>

#include <sys/types.h>

namespace faults {

/// The name and number of a thread that uses the processor all the time; empty when none does. `wait` passes some time
/// and is called again and again. A thread of a process in order is at work for a hundredth of the time; what is asked
/// for is a quarter of two times in a row, the second one longer, so that a busy machine blames nobody.
std::string busy_thread(pid_t pid, std::function<void()> const& wait);

}  // namespace faults

#endif
