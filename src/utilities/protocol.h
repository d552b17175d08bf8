#ifndef UTILITIES_PROTOCOL_H
#define UTILITIES_PROTOCOL_H

#include "utilities/type_length_value.h"

#include <string>

namespace utilities {

// The fixed words of the notification protocol. Each is built on first use and never destroyed: the threads that use
// them may do so while the process ends.

/// Where the server listens: the prefix that is fixed when the daemon is built, then the path below it.
std::string const& get_socket_path();

/// State of a machine in normal operation, with which clients start: "kOn".
std::string const& get_default_non_connected_state();

/// State of a client that has not reported one: "unknown".
std::string const& get_unknown_state();

/// What a client says first: "component_client_v1".
std::string const& get_protocol_version_one();

// Words of the channel that wakes the server's thread.
std::string const& get_terminate_command();
std::string const& get_state_change_request_added();

/// The message that ends the server's thread.
Type_length_values create_terminate_command();

/// The text without its first and last character when both are double quotes; one pair is taken off, no more.
std::string remove_quotes(std::string const& text);

}  // namespace utilities

#endif
