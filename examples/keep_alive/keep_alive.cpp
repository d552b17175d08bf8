// An application that keeps the ECU awake while it works:
//   keep_alive INSTANCE [SECONDS]
// INSTANCE is its name in the state manager's configuration, SECONDS the time after which the machine may sleep
// although it still works. The request comes back with a state manager that is restarted. Ends with SIGTERM or SIGINT.

#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/keep_awake.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>

using ximo::ap::statemanager::Ecu_alive;
using ximo::ap::statemanager::Keep_awake;

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::cerr << "Usage: " << argv[0] << " INSTANCE [SECONDS]\n";
        return 2;
    }
    // Blocked before there are other threads, and taken here.
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    try {
        tarq::com::runtime::Component_singleton const communication(false, "");  // first, and outlives the rest
        Keep_awake::Options options;
        options.limit = std::chrono::seconds(argc == 3 ? std::atoi(argv[2]) : 0);
        options.on_change = [](bool is_held) { std::cout << (is_held ? "held" : "not held") << std::endl; };
        Keep_awake const awake(argv[1], Ecu_alive(), options);
        int signal = 0;
        sigwait(&ends, &signal);  // the application's own work
    } catch (std::exception const& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
