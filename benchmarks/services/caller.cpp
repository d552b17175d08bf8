// An application that calls its COM-alive service as fast as it is answered:
//
//     benchmark_caller INSTANCE changing|repeated|paced MILLISECONDS
//     benchmark_caller INSTANCE serve ANY
//
// Writes "ready" when it has found the service, waits for a line, calls for the given time and writes how many calls
// were answered. "changing" requests and releases a bit of its own in turn, "repeated" requests the same one each time,
// and so does "paced", with a pause before each call: it writes how long each of them took, in nanoseconds.
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
#include <thread>
#include <vector>

namespace {

using Proxy = ximo::ap::statemanager::proxy::StateManagementComAliveInterfaceProxy;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds k_pace{2};

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

std::string times_of_calls(Proxy& proxy, std::vector<std::uint8_t> const& bits, std::chrono::milliseconds time) {
    std::string times;
    for (auto const end = Clock::now() + time; Clock::now() < end;) {
        std::this_thread::sleep_for(k_pace);
        auto const before = Clock::now();
        proxy.RequestComAlive(bits, 0).get();
        times += std::to_string(std::chrono::nanoseconds(Clock::now() - before).count()) + ' ';
    }
    return times;
}

int run(std::string const& instance, std::string const& kind, std::chrono::milliseconds time) {
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
    if (kind == "paced") {
        std::cout << times_of_calls(*proxy, own_bit(instance), time) << std::endl;
    } else {
        std::cout << answered_calls(*proxy, own_bit(instance), kind == "changing", time) << std::endl;
    }
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
        std::cerr << "usage: benchmark_caller INSTANCE changing|repeated|paced|serve MILLISECONDS\n";
        return 2;
    }
    try {
        if (std::string(argv[2]) == "serve") {
            return serve(argv[1]);
        }
        return run(argv[1], argv[2], std::chrono::milliseconds(std::stoi(argv[3])));
    } catch (std::exception const& error) {
        std::cerr << "benchmark_caller: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
