// A signal interrupts any thread. The handler reaches the manager through the holder, which keeps it until the process
// exits, and sets its flag; the driver sees it in its next cycle and returns to `main`.

#include "main/termination.h"

#include "ara/log/logging.h"

#include <csignal>

State_manager_holder g_state_manager;

void handle_termination_signal(int signal_number) {
    if (signal_number != SIGABRT && signal_number != SIGTERM && signal_number != SIGINT) {
        return;
    }
    g_state_manager.with([](auto& manager) {
        ara::log::LogInfo() << "SIGTERM received!";
        manager.shutdown();
    });
}

void register_termination_handlers(Install_handler install) {
    struct Registration {
        int signal_number;
        char const* failure;
    };
    for (auto const& registration : {Registration{SIGABRT, "Could not register SIGABRT handler"},
                                     Registration{SIGINT, "Could not register SIGINT handler"},
                                     Registration{SIGTERM, "Could not register SIGTERM handler"}}) {
        if (install(registration.signal_number, handle_termination_signal) == SIG_ERR) {
            ara::log::LogFatal() << registration.failure;
        }
    }
}
