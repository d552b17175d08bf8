// What single lines of a trace say: whose they are by how they begin, and what they mean for a walk along it.
#include "simulation/trace_words.h"

#include <algorithm>
#include <array>

namespace simulation {

namespace {

using dlt::Message;

/// The last that the daemon tells when it has found network management.
constexpr char const* k_complete = "Offering CWU services";

struct Words {
    char const* begin;
    Family family;
};

constexpr std::array k_words{Words{"AP_StateManger transition from", Family::driver},
                             Words{"Entering ", Family::driver},
                             Words{"Transition form startup to running not possible", Family::driver},
                             Words{"Requesting ", Family::driver},
                             Words{"Releasing network", Family::driver},
                             Words{"Setting EM machine state", Family::driver},
                             Words{"New command received", Family::driver},
                             Words{"Consumed VirtIO command", Family::driver},
                             Words{"Starting standby sequence", Family::driver},
                             Words{"Starting resume sequence", Family::driver},
                             Words{"Stop sending NM messages", Family::driver},
                             Words{"Start sending NM messages", Family::driver},
                             Words{"UdpNm usage disabled", Family::driver},
                             Words{"Lookup for PM daemon", Family::driver},
                             Words{"Shutting down PM daemon", Family::driver},
                             Words{"Starting ExitApp", Family::driver},
                             Words{"Normal shutdown executed", Family::driver},
                             Words{"Fast shutdown executed", Family::driver},
                             Words{"AP_StateManger daemon started", Family::driver},
                             Words{"AP_StateManger reporting kTerminating", Family::driver},
                             Words{"We received the notification", Family::network},
                             Words{"Ecu state based on NM activity", Family::network},
                             Words{"State_manager::ecu_alive_request:  End standby call", Family::driver},
                             Words{"State_manager::ecu_alive_release:  Standby call", Family::driver},
                             Words{"State_manager::ecu_alive_release network", Family::ecu_release},
                             Words{"State_manager::ecu_alive_", Family::ecu},
                             Words{"State_manager::", Family::requests},
                             Words{"Applying user data", Family::requests},
                             Words{"Releasing AC bit", Family::requests},
                             Words{"CWU bit", Family::requests},
                             Words{"RequestDiagnosticRestart", Family::restart},
                             Words{"Received unused Request", Family::restart},
                             Words{"client connected", Family::server},
                             Words{"client disconnected", Family::server},
                             Words{"sending state change request", Family::server},
                             Words{"calling callback", Family::server},
                             Words{"Received ", Family::server},
                             Words{"State notification client [", Family::server},
                             Words{"Client ", Family::server},
                             Words{"Shutting down AP_StateManger", Family::signal}};

/// Warnings that tell nothing about the neighbours' manners, or of a failure that no step depends on.
constexpr std::array k_harmless{"Failed to close event file descriptor",
                                "Could not find ",
                                "client dropped: ",
                                "connection dropped before",
                                "no connection can be taken",
                                "I/O exception while writing",
                                "Invalid Shared memory file provided",
                                "StateClient::SetState(",
                                "AliveSupervision: caught",
                                "DSA received unknown RestartType",
                                "State_manager_json_parser:",
                                "Application state not reported",
                                "Stopping AliveSupervision reporting"};

bool begins(std::string_view text, std::string_view begin) {
    return text.substr(0, begin.size()) == begin;
}

std::string without_blanks(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

}  // namespace

Family family_of(std::string_view text) {
    for (auto const& words : k_words) {
        if (begins(text, words.begin)) {
            return words.family;
        }
    }
    return Family::none;
}

bool carries_step(Message const& message) {
    return family_of(argument(message, 0)) != Family::none;
}

std::string argument(Message const& message, std::size_t place) {
    return place < message.arguments.size() ? message.arguments[place] : std::string();
}

bool says(Message const& message, char const* begin) {
    return begins(argument(message, 0), begin);
}

bool is_same_line(std::string const& left, std::string const& right) {
    return without_blanks(left) == without_blanks(right);
}

bool begins_wait(Message const& message) {
    return says(message, "Epoll_wait start");
}

bool ends_wait(Message const& message) {
    return says(message, "Epoll_wait returned");
}

bool ends_search(Message const& message) {
    return says(message, k_complete);
}

bool is_goodbye(Message const& message) {
    return says(message, "AP_StateManger daemon shutting down");
}

bool is_input(Message const& message) {
    constexpr std::array k_inputs{k_complete,         "We received the notification", "State_manager::handle_",
                                  "client connected", "client disconnected",          "calling callback",
                                  "Client ",          "RequestDiagnosticRestart",     "Received ",
                                  "SIGTERM received!"};
    bool const is_ecu =
        says(message, "State_manager::ecu_alive_request: ") || says(message, "State_manager::ecu_alive_release: ");
    bool const is_own = argument(message, 1) == "Standby call" || argument(message, 1) == "End standby call";
    return (is_ecu && !is_own) ||
           std::any_of(k_inputs.begin(), k_inputs.end(), [&](char const* begin) { return says(message, begin); });
}

bool is_unexplained_warning(Message const& message) {
    constexpr int k_warning = 3;
    return message.level <= k_warning &&
           std::none_of(k_harmless.begin(), k_harmless.end(), [&](char const* begin) { return says(message, begin); });
}

}  // namespace simulation
