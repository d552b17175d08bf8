#include "state_notifier/client_report.h"

#include "ara/log/logging.h"

#include <cstdint>

namespace ximo::ap::statemanager::state_notifier {

using client_state_notifier::Client_status;
using client_state_notifier::Component_client_return_type;

namespace {

void log_client(std::string const& name, Component_client_return_type status) {
    auto line = ara::log::LogInfo();
    line << "State notification client [" << name;
    switch (status) {
        case Component_client_return_type::succeeded:
            line << "] succeeded";
            break;
        case Component_client_return_type::general_error:
            line << "] general error";
            break;
        case Component_client_return_type::invalid:
            line << "] invalid";
            break;
        case Component_client_return_type::timed_out:
            line << "] timed out";
            break;
        default:
            line << "] unknown status " << static_cast<std::uint8_t>(status);
    }
}

}  // namespace

void log_out_of_turn(std::string const& name, Client_status status, std::string const& state) {
    ara::log::LogWarn() << "Client " << name << " errorneously reported state change to " << state
                        << ". Client status: " << static_cast<std::uint32_t>(status);
}

void log_clients(client_state_notifier::Client_results const& results) {
    for (auto const& [name, status] : results) {
        log_client(name, status);
    }
}

}  // namespace ximo::ap::statemanager::state_notifier
