#include "utilities/protocol.h"

namespace utilities {

std::string const& get_socket_path() {
    static auto const& path =
        *new std::string(remove_quotes(STATEMANAGER_VAR_PREFIX) + "/run/adaptive/ara_SM/ara_SM.socket");
    return path;
}

std::string const& get_default_non_connected_state() {
    static auto const& state = *new std::string("kOn");
    return state;
}

std::string const& get_unknown_state() {
    static auto const& state = *new std::string("unknown");
    return state;
}

std::string const& get_protocol_version_one() {
    static auto const& version = *new std::string("component_client_v1");
    return version;
}

std::string const& get_terminate_command() {
    static auto const& command = *new std::string("terminate");
    return command;
}

std::string const& get_state_change_request_added() {
    static auto const& word = *new std::string("state_change_request_added");
    return word;
}

Type_length_values create_terminate_command() {
    return {Type_length_value(get_terminate_command())};
}

std::string remove_quotes(std::string const& text) {
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') {
        return text;
    }
    return text.substr(1, text.size() - 2);
}

}  // namespace utilities
