#include "ara/log/logging.h"
#include "ara/phm/phm_client.h"
#include "ara/phm/supervision_entity.h"
#include "main/termination.h"
#include "statemanager/config/config_chooser.h"
#include "statemanager/config/state_manager_config.h"
#include "statemanager/config/state_manager_json_parser.h"
#include "statemanager/em/em_interface.h"
#include "statemanager/phm/supervision_manager.h"
#include "statemanager/state_manager.h"
#include "statemanager/virtio/virtio_interface.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <memory>

using namespace ximo::ap::statemanager;  // NOLINT(google-build-using-namespace): everything here is its

namespace {

constexpr int k_configuration_failure = -1;  // exit status 255

void start_logging() {
    ara::log::InitLogging("STMG", "ORVAX State Manager", ara::log::LogLevel::kVerbose, ara::log::LogMode::kRemote, "");
    // The State_manager outlives main; its destructors log, so it goes before the log does.
    std::atexit([] { g_state_manager.reset(nullptr); });
}

void run(config::State_manager_config const& configuration) {
    auto const execution_management = std::make_shared<Em_interface>();
    auto virtual_input = std::make_unique<virtio::Virtio_interface>();
    ara::phm::Phm_client const phm_client(configuration.get_alive_supervision_instance_id());
    auto entity = std::make_unique<ara::phm::SupervisionEntity>(phm_client);
    auto supervision = std::make_unique<phm::Supervision_manager>(std::move(entity));
    g_state_manager.reset(std::make_unique<State_manager>(configuration, nullptr, execution_management,
                                                          std::move(virtual_input), std::move(supervision)));
    g_state_manager.with([](State_manager& manager) {
        if (manager.init()) {
            manager.run();
        } else {
            ara::log::LogError() << "Failed to initialize AP_StateManger!";
        }
    });
}

}  // namespace

int main() {
    std::signal(SIGPIPE, SIG_IGN);
    start_logging();

    config::Config_chooser const chooser;
    if (!chooser.good()) {
        ara::log::LogFatal() << "Unable to read configuration selection file. AP_StateManger is aborted.";
        return k_configuration_failure;
    }
    config::State_manager_config configuration;
    if (!config::State_manager_json_parser::parse(chooser.get_config_path(), configuration)) {
        ara::log::LogFatal() << "Configuration is ill formatted, AP_StateManger is aborted.";
        return k_configuration_failure;
    }
    register_termination_handlers(std::signal);

    try {
        run(configuration);
    } catch (std::exception const& error) {
        ara::log::LogFatal() << "AP_StateManger is aborted: " << error.what();
        return k_configuration_failure;
    }
    ara::log::LogInfo() << "AP_StateManger daemon shutting down";
    return EXIT_SUCCESS;
}
