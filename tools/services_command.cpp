// `list_services` begins a lookup for each service, lets offers become known for its time, ends the lookups, and prints
// what there is then.

#include "ara/com/find_service.h"
#include "base/mutex.h"
#include "tarq/com/runtime/component_singleton.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"
#include "tools/commands.h"
#include "tools/json_text.h"
#include "tools/time_text.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

namespace statectl {

namespace {

using ara::com::ServiceHandleContainer;

struct Services_options {
    std::int64_t wait_ms{500};
    bool as_json{false};
};

/// What the lookups have found so far; their reports come on threads of the binding.
class Offers {
 public:
    template <class Proxy>
    void look_up() {
        auto const number = stops_.size();
        auto const lookup = Proxy::StartFindService(
            [this, number](ServiceHandleContainer const& found) {
                base::Lock_guard const lock(mutex_);
                found_[number] = found;
            },
            ara::com::InstanceSpecifier("*"));
        stops_.emplace_back([lookup] { Proxy::StopFindService(lookup); });
    }

    ServiceHandleContainer take() {
        for (auto const& stop : stops_) {
            stop();
        }
        base::Lock_guard const lock(mutex_);
        ServiceHandleContainer all;
        for (auto const& [number, found] : found_) {
            all.insert(all.end(), found.begin(), found.end());
        }
        return all;
    }

 private:
    base::Mutex mutex_;
    std::map<std::size_t, ServiceHandleContainer> found_ GUARDED_BY(mutex_);  ///< by number of the lookup
    std::vector<std::function<void()>> stops_;
};

ServiceHandleContainer offers_after(std::chrono::milliseconds wait) {
    namespace applications = ximo::ap::statemanager::proxy;
    namespace network = tarq::udpnm::interface::proxy;
    tarq::com::runtime::Component_singleton const communication(false, "");
    Offers offers;
    offers.look_up<applications::StateManagementAliveInterfaceProxy>();
    offers.look_up<applications::StateManagementComAliveInterfaceProxy>();
    offers.look_up<applications::StateManagementCWUInterfaceProxy>();
    offers.look_up<applications::DSAInterfaceProxy>();
    offers.look_up<network::NetworkStateInterfaceProxy>();
    offers.look_up<network::UserDataInterfaceProxy>();
    std::this_thread::sleep_for(wait);  // nobody can say that no further offer is on its way
    return offers.take();
}

void print_json(ServiceHandleContainer const& offers) {
    auto list = nlohmann::json::array();
    for (auto const& offer : offers) {
        list.push_back({{"interface", offer.GetInterfaceName()},
                        {"instance", offer.GetInstanceId().ToString()},
                        {"since", time_text(offer.GetOfferTime())},
                        {"participant", offer.GetParticipant()}});
    }
    std::puts(json_text(list, 2).c_str());
}

void print_table(ServiceHandleContainer const& offers) {
    if (offers.empty()) {
        std::puts("No service is offered.");
        return;
    }
    constexpr char const* k_row = "%-62s %-16s %s\n";
    std::printf(k_row, "INTERFACE", "INSTANCE", "SINCE");
    for (auto const& offer : offers) {
        std::printf(k_row, offer.GetInterfaceName().c_str(), offer.GetInstanceId().ToString().c_str(),
                    time_text(offer.GetOfferTime()).c_str());
    }
}

int list_services(Services_options const& options) {
    auto const offers = offers_after(std::chrono::milliseconds(options.wait_ms));
    if (options.as_json) {
        print_json(offers);
    } else {
        print_table(offers);
    }
    return k_success;
}

}  // namespace

void add_services_command(CLI::App& program, Action& chosen) {
    constexpr std::int64_t k_longest_ms = 60'000;
    auto const options = std::make_shared<Services_options>();
    auto* const command = program.add_subcommand("services", "List the service instances that are offered");
    command->add_option("--wait", options->wait_ms, "Milliseconds in which offers may become known")
        ->check(CLI::Range(std::int64_t{0}, k_longest_ms))
        ->capture_default_str();
    command->add_flag("--json", options->as_json, "Print a JSON array");
    command->callback([options, &chosen] { chosen = [options] { return list_services(*options); }; });
}

}  // namespace statectl
