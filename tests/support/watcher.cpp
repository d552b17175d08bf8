// A pipe tells when the watcher watches: it has a 0 then, or the reason why it does not, and its end when there is no
// watcher any more.
#include "support/watcher.h"

#include <array>
#include <cerrno>

#include <sys/wait.h>
#include <unistd.h>

namespace test_support {

namespace {

bool tell(int end, int error) {
    return ::write(end, &error, sizeof error) == sizeof error && ::close(end) == 0;
}

// In a process whose only task that is.
void start_beside(pid_t program, int end, Watch const& watch) {
    pid_t const watcher = ::fork();
    if (watcher == -1) {
        tell(end, errno);
    } else if (watcher == 0) {
        if (int const error = watch(program, [end] { return tell(end, 0); }); error != 0) {
            tell(end, error);
        }
    }
}

}  // namespace

int start_watcher(Watch const& watch) {
    std::array<int, 2> ready{};
    if (::pipe(ready.data()) != 0) {
        return errno;
    }
    pid_t const program = ::getpid();
    pid_t const helper = ::fork();
    int const fork_error = errno;
    if (helper == 0) {
        ::close(ready[0]);
        start_beside(program, ready[1], watch);
        ::_exit(0);
    }
    ::close(ready[1]);
    int told = helper == -1 ? fork_error : EPIPE;
    if (helper != -1) {
        static_cast<void>(::read(ready[0], &told, sizeof told) == sizeof told);
        ::waitpid(helper, nullptr, 0);
    }
    ::close(ready[0]);
    return told;
}

bool is_refusal(int error) {
    return error == EPERM || error == EACCES || error == ENOSYS;
}

}  // namespace test_support
