// The other side of the calls that are measured, each as its own process:
//   call_peer socket PATH     answers 64 bytes with 64 bytes on a Unix stream socket
//   call_peer bus ADDRESS     answers "RequestAlive" on a D-Bus
//   call_peer engine URI      answers on the engine's C interface, which it configures with this URI
//   call_peer alive INSTANCE  offers the ECU-alive service
//   call_peer idle INSTANCE   a client of the ECU-alive service that has called once and keeps its proxy
// Prints "ready" and serves until its standard input ends; each byte of that is answered with the memory it has, in
// KiB: what is resident, and what is allocated.

#include "benchmarks/communication/found.h"
#include "benchmarks/communication/yardsticks.h"
#include "benchmarks/machine/process_memory.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_skeleton.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

namespace {

using ximo::ap::statemanager::proxy::StateManagementAliveInterfaceProxy;

ximo::com::Future<void> answered() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

class Alive : public ximo::ap::statemanager::skeleton::StateManagementAliveInterfaceSkeleton {
 public:
    using StateManagementAliveInterfaceSkeleton::StateManagementAliveInterfaceSkeleton;

    ximo::com::Future<void> ReleaseAlive() override { return answered(); }
    ximo::com::Future<void> RequestAlive() override { return answered(); }
};

void ready() {
    std::cout << "ready" << std::endl;
}

void serve_alive(std::string const& instance) {
    tarq::com::runtime::Component_singleton const runtime(false, "");
    Alive service(ara::com::InstanceIdentifier(instance), ara::com::MethodCallProcessingMode::kEvent);
    service.OfferService();
    ready();
    benchmarks::answer_with_memory();
    service.StopOfferService();
}

void stay_connected(std::string const& instance) {
    tarq::com::runtime::Component_singleton const runtime(false, "");
    auto const service = benchmarks::found<StateManagementAliveInterfaceProxy>(instance);
    service->RequestAlive().get();
    ready();
    benchmarks::answer_with_memory();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "Usage: " << argv[0]
                  << " socket PATH | bus ADDRESS | engine URI | alive INSTANCE | idle INSTANCE\n";
        return EXIT_FAILURE;
    }
    std::string const mode = argv[1];
    if (mode == "alive") {
        serve_alive(argv[2]);
        return EXIT_SUCCESS;
    }
    if (mode == "idle") {
        stay_connected(argv[2]);
        return EXIT_SUCCESS;
    }
    // These serve on a thread that dies with the process.
    if (mode == "socket") {
        std::thread(benchmarks::serve_socket, std::string(argv[2]), ready).detach();
    } else if (mode == "engine") {
        std::thread(benchmarks::serve_engine, std::string(argv[2]), ready).detach();
    } else {
        std::thread(benchmarks::serve_bus, std::string(argv[2]), ready).detach();
    }
    benchmarks::answer_with_memory();
    std::_Exit(EXIT_SUCCESS);
}
