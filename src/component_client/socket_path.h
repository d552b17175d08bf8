#ifndef COMPONENT_CLIENT_SOCKET_PATH_H
#define COMPONENT_CLIENT_SOCKET_PATH_H

#include <string>

namespace component_client {

/// Names the state manager's socket for all clients of a process and its children.
constexpr char const* k_socket_variable = "AP_STATEMANAGER_SOCKET";

/// Where to connect: `chosen`, or what the environment says, or where the state manager of this machine listens; the
/// first that is not empty.
std::string socket_path(std::string const& chosen);

}  // namespace component_client

#endif
