#ifndef TESTS_FAULTS_CALLS_H
#define TESTS_FAULTS_CALLS_H

#include <string>
#include <vector>

/// The system calls that are made to fail: what each can come to, by what it is called for.
namespace faults {

/// What a call's descriptor is, as far as it decides which errors are plausible.
enum class Subject { none, file, stream, datagrams, pipe, other };

/// One way in which a call goes wrong.
struct Error {
    int number;  ///< of errno
    char const* name;
};

struct Call {
    long number;  ///< of the system call
    char const* name;
    bool has_descriptor;        ///< as its first argument
    bool is_done_all_the_same;  ///< an error is told of a call that has done its work (close)
    int length_argument;        ///< which argument says how much is read or written; -1 where there is none
};

/// All calls that are watched. What is left out can't fail in a process that is in order (getpid, rt_sigprocmask,
/// futex), or only gives something back (munmap, madvise).
std::vector<Call> const& calls();

/// Nothing for a call that is not watched.
Call const* call_of(long number);

/// How a call can fail. EAGAIN only where the descriptor does not block.
std::vector<Error> errors_of(Call const& call, Subject subject, bool is_nonblocking);

std::string name_of_error(int number);

}  // namespace faults

#endif
