#ifndef TESTS_FAULTS_CALLS_H
#define TESTS_FAULTS_CALLS_H

#include <string>
#include <vector>

/// The system calls that are made to fail: what each can come to, by what it is called for.
namespace faults {

/// What a call's descriptor is, as far as it decides which errors are plausible.
enum class Subject { none, file, stream, datagrams, pipe, other };

/// What a call does with the descriptor that is its first argument, where its errors depend on that.
enum class Use { none, reads, writes, connects };

struct Call {
    long number;  ///< of the system call
    char const* name;
    Use use;
    std::vector<int> errors;  ///< that it can have whatever its descriptor
};

/// All calls that are watched. What is left out can't fail in a process that is in order (getpid, rt_sigprocmask,
/// futex), or only gives something back (munmap, madvise).
std::vector<Call> const& calls();

/// Nothing for a call that is not watched.
Call const* call_of(long number);

/// How a call can fail. EAGAIN only where the descriptor does not block.
std::vector<int> errors_of(Call const& call, Subject subject, bool is_nonblocking);

}  // namespace faults

#endif
