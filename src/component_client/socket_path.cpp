#include "component_client/socket_path.h"

#include "utilities/protocol.h"

#include <cstdlib>

namespace component_client {

std::string socket_path(std::string const& chosen) {
    if (!chosen.empty()) {
        return chosen;
    }
    char const* const from_environment = ::secure_getenv(k_socket_variable);
    return from_environment != nullptr && *from_environment != '\0' ? from_environment : utilities::get_socket_path();
}

}  // namespace component_client
