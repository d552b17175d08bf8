#include "bench/process/end_signals.h"

#include "base/end_signals.h"

#include <csignal>

namespace bench {

namespace {

volatile std::sig_atomic_t noted = 0;

void note(int number) {
    noted = number;
}

}  // namespace

void note_end_signals() {
    base::handle_end_signals(note);
}

int noted_end_signal() {
    return noted;
}

}  // namespace bench
