#ifndef TESTS_SUPPORT_WATCHER_H
#define TESTS_SUPPORT_WATCHER_H

#include <functional>

#include <sys/types.h>

namespace test_support {

/// What a watcher calls as soon as it watches; false when nobody waits for that any more.
using Tell_ready = std::function<bool()>;

/// Watches the program to its end, and returns 0; or the error (`errno`) for which it could not begin.
using Watch = std::function<int(pid_t program, Tell_ready const& ready)>;

/// Starts a process beside this one, which is to become another program (exec) and is watched by it: `watch` runs there
/// with this one's number, until it returns. The watcher is nobody's child, so that the program does not meet it. 0 as
/// soon as it has called what it was given; else the error for which nobody watches.
int start_watcher(Watch const& watch);

/// Whether the machine does not allow what failed so: a reason to leave a test out, and the only one.
bool is_refusal(int error);

}  // namespace test_support

#endif
