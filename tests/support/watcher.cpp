// A pipe tells when the watcher watches: it has a byte then, and its end when there is no watcher any more.
#include "support/watcher.h"

#include <array>

#include <sys/wait.h>
#include <unistd.h>

namespace test_support {

bool start_watcher(std::function<void(pid_t program, Tell_ready const& ready)> const& watch) {
    std::array<int, 2> ready{};
    if (::pipe(ready.data()) != 0) {
        return false;
    }
    pid_t const program = ::getpid();
    pid_t const helper = ::fork();
    if (helper == 0) {
        if (::fork() == 0) {
            ::close(ready[0]);
            watch(program, [end = ready[1]] { return ::write(end, "", 1) == 1 && ::close(end) == 0; });
        }
        ::_exit(0);
    }
    ::close(ready[1]);
    char told = 0;
    bool const watched = ::read(ready[0], &told, 1) == 1;
    ::close(ready[0]);
    ::waitpid(helper, nullptr, 0);
    return watched;
}

}  // namespace test_support
