#include "statemanager/config/require_sendable.h"

#include <cstddef>
#include <stdexcept>
#include <string>

namespace ximo::ap::statemanager::config {
namespace {

// Octets that one argument of a call of network management may have.
constexpr std::size_t k_longest_argument = 1024;

void require_sendable(char const* setting, std::size_t bytes) {
    if (bytes > k_longest_argument) {
        throw std::length_error(std::string(setting) + " says " + std::to_string(bytes) +
                                " bytes, and network management takes " + std::to_string(k_longest_argument) +
                                " at most");
    }
}

}  // namespace

void require_sendable(State_manager_config_abstract const& config) {
    require_sendable("UserDataBytes", config.get_nm_user_data_config().user_data_bytes);
    require_sendable("DefautNMRequestPattern", config.get_nm_request_pattern().size());
}

}  // namespace ximo::ap::statemanager::config
