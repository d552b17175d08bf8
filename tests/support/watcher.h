#ifndef TESTS_SUPPORT_WATCHER_H
#define TESTS_SUPPORT_WATCHER_H

#include <functional>

#include <sys/types.h>

namespace test_support {

/// What a watcher calls as soon as it watches; false when nobody waits for that any more.
using Tell_ready = std::function<bool()>;

/// Starts a process beside this one, which is to become another program (exec) and is watched by it: `watch` runs there
/// with this one's number, until it returns. The watcher is nobody's child, so that the program does not meet it. True
/// as soon as it has called what it was given; false when it ended without.
bool start_watcher(std::function<void(pid_t program, Tell_ready const& ready)> const& watch);

}  // namespace test_support

#endif
