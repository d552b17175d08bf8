#ifndef BENCH_PROCESS_END_SIGNALS_H
#define BENCH_PROCESS_END_SIGNALS_H

namespace bench {

/// What a shell's status says of a program that a signal ended: this and the signal's number.
inline constexpr int k_signal_status = 128;

/// From now on the signals that end a program (base/end_signals.h) are noted instead of ending it, which is to look and
/// to end in order.
void note_end_signals();

/// Number of the one that was noted last; 0 while there is none.
int noted_end_signal();

}  // namespace bench

#endif
