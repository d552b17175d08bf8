#include "bench/json_lines/clock.h"
#include "benchmarks/machine/figures.h"
#include "measurements.h"
#include "tarq/com/runtime/component_singleton.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace benchmarks {

namespace {

namespace proxies = ximo::ap::statemanager::proxy;

constexpr int k_starts = 20;
constexpr double k_target_ms = 10.0;  // after the first word: network management is there before the start

/// A client that waits for all instances that the configuration names.
class Waiting_client {
 public:
    Waiting_client() {
        look_up<proxies::DSAInterfaceProxy>("DSA_Interface");
        look_up<proxies::StateManagementCWUInterfaceProxy>("1");
        look_up<proxies::StateManagementAliveInterfaceProxy>("1");
        look_up<proxies::StateManagementAliveInterfaceProxy>("2");
        for (int number = 1; number <= k_applications; ++number) {
            look_up<proxies::StateManagementComAliveInterfaceProxy>(std::to_string(number));
        }
    }
    ~Waiting_client() {
        for (auto const& lookup : lookups_) {
            proxies::DSAInterfaceProxy::StopFindService(lookup);
        }
    }
    Waiting_client(Waiting_client const&) = delete;
    Waiting_client& operator=(Waiting_client const&) = delete;

    /// Returns the time at which as many services were there; nanoseconds.
    std::int64_t await(int count) {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!changed_.wait_for(lock, std::chrono::seconds(10), [&] { return found_ == count; })) {
            throw std::runtime_error(std::to_string(found_) + " services found");
        }
        return last_change_;
    }
    int wanted() const { return static_cast<int>(lookups_.size()); }

 private:
    template <class Proxy>
    void look_up(std::string const& instance) {
        lookups_.push_back(Proxy::StartFindService(
            [this, there = false](ara::com::ServiceHandleContainer const& handles) mutable {
                note(static_cast<int>(!handles.empty()) - static_cast<int>(there));
                there = !handles.empty();
            },
            ara::com::InstanceSpecifier(instance)));
    }

    void note(int more) {
        std::lock_guard<std::mutex> const lock(mutex_);
        found_ += more;
        last_change_ = bench::monotonic_ns();
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    int found_{0};
    std::int64_t last_change_{0};
    std::vector<ara::com::FindServiceHandle> lookups_;
};

}  // namespace

void measure_all_found(bench::vehicle::Vehicle& vehicle) {
    tarq::com::runtime::Component_singleton const communication(false, "");
    Waiting_client client;
    Samples found;
    Samples first_word;
    Samples running;
    for (int start = 0; start < k_starts; ++start) {
        auto const begin = bench::monotonic_ns();
        vehicle.start_daemon();
        found.add(client.await(client.wanted()) - begin);
        for (auto const& [word, samples] : {std::pair{"startingup", &first_word}, {"running", &running}}) {
            auto const place = vehicle.await(bench::vehicle::Kind::state_word, word);
            samples->add(vehicle.events().at(place.value()).time - begin);
        }
        stop_daemon(vehicle);
        client.await(0);
    }
    print("start to all " + std::to_string(client.wanted()) + " services found", found);
    print("start to \"running\"", running);
    print("start to \"startingup\"", first_word);
    tell({"all services found beside \"startingup\", median", found.median_us() / 1000.0,
          first_word.median_us() / 1000.0, "ms", at_most_more(k_target_ms)});
}

}  // namespace benchmarks
