#include "bench/process/end_signals.h"

#include <array>

namespace bench {

namespace {

constexpr std::array<int, 4> k_end_signals{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

volatile std::sig_atomic_t noted = 0;

void note(int number) {
    noted = number;
}

}  // namespace

sigset_t end_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (int const number : k_end_signals) {
        sigaddset(&signals, number);
    }
    return signals;
}

void handle_end_signals(void (*handler)(int number)) {
    for (int const number : k_end_signals) {
        struct sigaction action {};
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = handler;
            action.sa_flags = SA_RESTART;
            ::sigaction(number, &action, nullptr);
        }
    }
}

void note_end_signals() {
    handle_end_signals(note);
}

int noted_end_signal() {
    return noted;
}

}  // namespace bench
