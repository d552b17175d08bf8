// `watch` looks for both services of the network manager and then waits until a signal ends it; each value is reported
// on a thread of the binding as it comes, and user data whose event was lost with the next second.

#include "services/found_instance.h"
#include "tarq/com/runtime/component_singleton.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"
#include "tools/check_config/verdict.h"
#include "tools/commands.h"
#include "tools/signals.h"
#include "tools/watch_report.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

#include <poll.h>

namespace statectl {

namespace {

using tarq::udpnm::interface::proxy::NetworkStateInterfaceProxy;
using tarq::udpnm::interface::proxy::UserDataInterfaceProxy;

struct Watch_options {
    std::string instance{"*"};
    std::string configuration;
    bool as_json{false};
};

// A subscription outlives the offer, so the first way to an instance is prepared once.
void follow(std::shared_ptr<NetworkStateInterfaceProxy> const& way, Watch_report& report) {
    auto& field = way->NetworkState;
    field.SetReceiveHandler([&field, &report] {
        field.Update();
        for (auto const& sample : field.GetCachedSamples()) {
            report.network_state(*sample);
        }
    });
    field.Subscribe(1);
}

void follow(std::shared_ptr<UserDataInterfaceProxy> const& way, Watch_report& report) {
    auto& event = way->UserDataChanged;
    event.SetReceiveHandler([&event, &report] {
        event.Update();
        for (auto const& sample : event.GetCachedSamples()) {
            report.user_data(*sample);
        }
    });
    event.Subscribe(1);
    report.user_data(way->GetUserData().get().data);
}

template <class Proxy>
auto follower(char const* service, Watch_report& report) {
    return [service, &report](std::shared_ptr<Proxy> const& way) {
        report.offered(service, way != nullptr);
        try {
            if (way) {
                follow(way, report);
            }
        } catch (std::exception const& error) {
            report.trouble(error.what());
        }
    };
}

services::User_data_layout layout_of(std::string const& configuration) {
    if (configuration.empty()) {
        return {};
    }
    auto const verdict = check_config::ask_daemon(configuration);
    if (!verdict.is_taken) {
        throw std::runtime_error(configuration + " is refused by the state manager: " + verdict.reason);
    }
    return verdict.config->get_nm_user_data_config();
}

// An event that the network manager sends before its writer has heard of a new subscription is lost: the value is asked
// for each second as well.
void ask_again(services::Found_instance<UserDataInterfaceProxy>& user_data, Watch_report& report) {
    try {
        if (auto const way = user_data.await(std::chrono::milliseconds(0))) {
            report.user_data_asked(way->GetUserData().get().data);
        }
    } catch (std::exception const&) {
        return;  // a manager that is going, or is slow: the next second tells
    }
}

// False when it is over.
bool goes_on_for(std::chrono::milliseconds time, End_signals const& end) {
    pollfd source{end.descriptor(), POLLIN, 0};
    int const ready = ::poll(&source, 1, static_cast<int>(time.count()));
    if (ready < 0 && errno != EINTR) {
        throw std::system_error(errno, std::generic_category(), "poll");
    }
    return ready <= 0;
}

int watch(Watch_options const& options) {
    End_signals const end;  // before the binding's threads begin, which are not to take the signals
    Watch_report report(options.as_json, layout_of(options.configuration));
    tarq::com::runtime::Component_singleton const communication(false, "");
    services::Found_instance<NetworkStateInterfaceProxy> const network_state(
        options.instance, follower<NetworkStateInterfaceProxy>("network state", report));
    services::Found_instance<UserDataInterfaceProxy> user_data(options.instance,
                                                               follower<UserDataInterfaceProxy>("user data", report));
    while (goes_on_for(std::chrono::seconds(1), end)) {
        ask_again(user_data, report);
    }
    return k_success;
}

}  // namespace

void add_watch_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Watch_options>();
    auto* const command =
        program.add_subcommand("watch", "Show the network state and the NM user data whenever they change");
    command->add_option("--instance", options->instance, "Instance name of the network manager; * for any")
        ->capture_default_str();
    command->add_option("--config", options->configuration, "Configuration that tells the layout of the user data")
        ->check(CLI::ExistingFile);
    command->add_flag("--json", options->as_json, "One JSON object a line");
    command->callback([options, &chosen] { chosen = [options] { return watch(*options); }; });
}

}  // namespace statectl
