#include "tools/signals.h"

#include "base/end_signals.h"

#include <csignal>

#include <sys/signalfd.h>

namespace statectl {

namespace {

int open_signals() {
    auto const ends = base::heeded_end_signals();
    ::sigprocmask(SIG_BLOCK, &ends, nullptr);
    return ::signalfd(-1, &ends, SFD_CLOEXEC | SFD_NONBLOCK);
}

}  // namespace

End_signals::End_signals() : signals_(open_signals()) {}

}  // namespace statectl
