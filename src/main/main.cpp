#include "ara/log/logging.h"
#include "ara/phm/phm_client.h"
#include "ara/phm/supervision_entity.h"
#include "main/termination.h"
#include "statemanager/config/config_chooser.h"
#include "statemanager/config/state_manager_config.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "statemanager/em/em_interface.h"
#include "statemanager/phm/supervision_manager.h"
#include "statemanager/service_handler/nm_interface.h"
#include "statemanager/service_handler/service_handler.h"
#include "statemanager/services/services_of.h"
#include "statemanager/services/state_manager_com_alive_interface.h"
#include "statemanager/services/state_manager_cwu_interface.h"
#include "statemanager/state_manager.h"
#include "statemanager/virtio/virtio_interface.h"
#include "status/page_file.h"
#include "tarq/com/runtime/component_singleton.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace ximo::ap::statemanager;  // NOLINT(google-build-using-namespace): everything here is its

namespace {

constexpr int k_failure = -1;  // exit status 255

void start_logging() {
    ara::log::InitLogging("STMG", "ORVAX State Manager", ara::log::LogLevel::kVerbose, ara::log::LogMode::kRemote, "");
    // The State_manager outlives main; its destructors log, so it goes before the log does.
    std::atexit([] { g_state_manager.reset(nullptr); });
}

std::shared_ptr<Service_handler> make_service_handler(config::State_manager_config const& configuration) {
    auto network_management = std::make_unique<Nm_interface>();
    auto com_alive = services_of<State_manager_com_alive_interface, State_manager_com_alive_interface_abstract>(
        configuration.get_apps_comalive());
    auto cwu =
        services_of<State_manager_cwu_interface, State_manager_cwu_interface_abstract>(configuration.get_apps_cwu());
    return std::make_shared<Service_handler>(configuration, std::move(network_management), std::move(com_alive),
                                             std::move(cwu));
}

// The page is written to the very end, by threads that outlive main as well.
void show_status(std::string const& path, config::State_manager_config const& configuration) {
    static auto const* const page = new status::Page_file(
        status::k_page_path, {path, configuration.get_main_function_period(), configuration.get_knockout_timer(),
                              configuration.is_nm_usage_allowed()});
    static_cast<void>(page);
}

void run(config::State_manager_config const& configuration) {
    auto const service_handler = make_service_handler(configuration);
    auto const execution_management = std::make_shared<Em_interface>();
    auto virtual_input = std::make_unique<virtio::Virtio_interface>();
    ara::phm::Phm_client const phm_client(configuration.get_alive_supervision_instance_id());
    auto entity = std::make_unique<ara::phm::SupervisionEntity>(phm_client);
    auto supervision = std::make_unique<phm::Supervision_manager>(std::move(entity));
    g_state_manager.reset(std::make_unique<State_manager>(configuration, service_handler, execution_management,
                                                          std::move(virtual_input), std::move(supervision)));
    g_state_manager.with([](State_manager& manager) {
        if (manager.init()) {
            manager.run();
        } else {
            ara::log::LogError() << "Failed to initialize AP_StateManger!";
        }
    });
    ara::log::LogInfo() << "AP_StateManger daemon shutting down";
}

int start_and_run() {
    start_logging();

    config::Config_chooser const chooser;
    if (!chooser.good()) {
        ara::log::LogFatal() << "Unable to read configuration selection file. AP_StateManger is aborted.";
        return k_failure;
    }
    config::State_manager_config configuration;
    if (!config::State_manager_json_parser::parse(chooser.get_config_path(), configuration)) {
        ara::log::LogFatal() << "Configuration is ill formatted, AP_StateManger is aborted.";
        return k_failure;
    }
    show_status(chooser.get_config_path(), configuration);
    register_termination_handlers(std::signal);
    run(configuration);
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    tarq::com::runtime::Component_singleton const communication(false, "");
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return start_and_run();
    } catch (std::exception const& error) {
        ara::log::LogFatal() << "AP_StateManger is aborted: " << error.what();
        return k_failure;
    }
}
