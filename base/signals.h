#ifndef BASE_SIGNALS_H
#define BASE_SIGNALS_H

#include <csignal>

#include <pthread.h>

namespace base {

/// Blocks all signals of the calling thread for as long as it lives. A thread inherits the mask of the one that starts
/// it, so a thread started meanwhile takes none from its first statement on: signals stay with the program's others.
class All_signals_blocked {
 public:
    All_signals_blocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~All_signals_blocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    All_signals_blocked(All_signals_blocked const&) = delete;
    All_signals_blocked& operator=(All_signals_blocked const&) = delete;

 private:
    sigset_t before_{};
};

}  // namespace base

#endif
