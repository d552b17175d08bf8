#ifndef BASE_END_SIGNALS_H
#define BASE_END_SIGNALS_H

#include <array>
#include <csignal>

namespace base {

/// The signals by which a user, a terminal that goes away, or a service manager ends a program.
inline constexpr std::array<int, 4> k_end_signals{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

inline sigset_t end_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (int const number : k_end_signals) {
        sigaddset(&signals, number);
    }
    return signals;
}

/// Those of them that are not ignored: under nohup a program stays what it is.
inline sigset_t heeded_end_signals() {
    auto signals = end_signals();
    for (int const number : k_end_signals) {
        struct sigaction action {};
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN) {
            sigdelset(&signals, number);
        }
    }
    return signals;
}

/// Has those of them handled that are not ignored: under nohup a program stays what it is. SIG_DFL gives them back.
inline void handle_end_signals(void (*handler)(int number)) {
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

}  // namespace base

#endif
