// An application that calls its COM-alive service as fast as it is answered:
//
//     benchmark_caller INSTANCE changing|repeated MILLISECONDS
//     benchmark_caller INSTANCE serve ANY
//
// Writes "ready" when it has found the service, waits for a line, calls for the given time and writes how many calls
// were answered. "changing" requests and releases a bit of its own in turn, "repeated" requests the same one each time.
// "serve" is the other side: it offers the instance, does nothing in its handlers, writes "ready" and ends with its
// standard input.

#include "services/found_instance.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_skeleton.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using Proxy = ximo::ap::statemanager::proxy::StateManagementComAliveInterfaceProxy;
using Clock = std::chrono::steady_clock;

/// One of the 32 bits that count, by the number in the instance's name.
std::vector<std::uint8_t> own_bit(std::string const& instance) {
    auto const number = static_cast<unsigned>(std::stoul(instance)) % 32;
    std::vector<std::uint8_t> bits(4);
    bits[number / 8] = static_cast<std::uint8_t>(1U << (number % 8));
    return bits;
}

int answered_calls(Proxy& proxy, std::vector<std::uint8_t> const& bits, bool changing, std::chrono::milliseconds time) {
    int calls = 0;
    for (auto const end = Clock::now() + time; Clock::now() < end; ++calls) {
        if (changing && calls % 2 == 1) {
            proxy.ReleaseComAlive(bits).get();
        } else {
            proxy.RequestComAlive(bits, 0).get();
        }
    }
    return calls;
}

int run(std::string const& instance, bool changing, std::chrono::milliseconds time) {
    tarq::com::runtime::Component_singleton const communication(false, "");
    services::Found_instance<Proxy> service(instance);
    auto const proxy = service.await(std::chrono::seconds(10));
    if (!proxy) {
        throw std::runtime_error("no service " + instance);
    }
    proxy->RequestComAlive(own_bit(instance), 0).get();
    std::cout << "ready" << std::endl;
    std::string go;
    std::getline(std::cin, go);
    auto const calls = answered_calls(*proxy, own_bit(instance), changing, time);
    std::cout << calls << std::endl;
    proxy->ReleaseComAlive(own_bit(instance)).get();
    return EXIT_SUCCESS;
}

ximo::com::Future<void> answered() {
    ximo::com::Promise<void> promise;
    promise.set_value();
    return promise.get_future();
}

class Empty_service : public ximo::ap::statemanager::skeleton::StateManagementComAliveInterfaceSkeleton {
 public:
    using StateManagementComAliveInterfaceSkeleton::StateManagementComAliveInterfaceSkeleton;

    ximo::com::Future<void> ReleaseComAlive(std::vector<std::uint8_t> const& /*bits*/) override { return answered(); }
    ximo::com::Future<void> RequestComAlive(std::vector<std::uint8_t> const& /*bits*/,
                                            std::uint8_t /*number*/) override {
        return answered();
    }
};

int serve(std::string const& instance) {
    tarq::com::runtime::Component_singleton const communication(false, "");
    Empty_service service(ara::com::InstanceIdentifier(instance), ara::com::MethodCallProcessingMode::kEvent);
    service.OfferService();
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
    }
    service.StopOfferService();
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: benchmark_caller INSTANCE changing|repeated|serve MILLISECONDS\n";
        return 2;
    }
    try {
        if (std::string(argv[2]) == "serve") {
            return serve(argv[1]);
        }
        return run(argv[1], std::string(argv[2]) == "changing", std::chrono::milliseconds(std::stoi(argv[3])));
    } catch (std::exception const& error) {
        std::cerr << "benchmark_caller: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
