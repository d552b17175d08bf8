#ifndef BENCH_PROCESS_END_SIGNALS_H
#define BENCH_PROCESS_END_SIGNALS_H

#include <csignal>

namespace bench {

/// What a shell's status says of a program that a signal ended: this and the signal's number.
inline constexpr int k_signal_status = 128;

/// The signals by which a user, a terminal that goes away, or a service manager ends a program.
sigset_t end_signals();

/// Has those of them handled that are not ignored: under nohup a program stays what it is. SIG_DFL gives them back.
void handle_end_signals(void (*handler)(int number));

/// From now on they are noted instead of ending the program, which is to look and to end in order.
void note_end_signals();

/// Number of the one that was noted last; 0 while there is none.
int noted_end_signal();

}  // namespace bench

#endif
