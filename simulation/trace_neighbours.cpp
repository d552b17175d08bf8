// What a trace tells of the daemon's neighbours, done by the simulated ones (trace_walk.cpp asks for it, line by line).
#include "simulation/trace_neighbours.h"

#include "base/hex.h"
#include "simulation/trace_words.h"

#include <cstdint>
#include <cstdlib>
#include <map>

namespace simulation {

using dlt::Message;

std::string key_of(std::string const& command) {
    static std::map<std::string, std::string> const keys{
        {"Run", "r"}, {"NmControlled", "n"}, {"NMControlledPrepareSD", "s"}, {"PrepareSD", "p"}, {"Shutdown", "power"}};
    auto const found = keys.find(command);
    return found == keys.end() ? "" : found->second;
}

Bits bits_of(std::string const& text) {
    return base::from_hex(text).value_or(Bits());
}

Client_manner::Answer answer_of(std::string const& status) {
    using Answer = Client_manner::Answer;
    if (status == "] succeeded") {
        return Answer::succeeds;
    }
    return status == "] general error" ? Answer::fails : status == "] invalid" ? Answer::is_invalid : Answer::silent;
}

bool apply_application(Message const& message, Applications& applications) {
    auto const id = argument(message, 1);
    auto const number = [&](std::size_t place) {
        return static_cast<std::uint8_t>(std::strtoul(argument(message, place).c_str(), nullptr, 10));
    };
    if (says(message, "State_manager::ecu_alive_request")) {
        applications.request_ecu(id);
    } else if (says(message, "State_manager::ecu_alive_release")) {
        applications.release_ecu(id);
    } else if (says(message, "State_manager::handle_com_alive_request")) {
        applications.request_com(id, bits_of(argument(message, 3)), number(5));
    } else if (says(message, "State_manager::handle_com_alive_release")) {
        applications.release_com(id, bits_of(argument(message, 3)));
    } else if (says(message, "State_manager::handle_cwu_request")) {
        applications.request_car_wake_up(id, number(3));
    } else if (says(message, "State_manager::handle_cwu_release")) {
        applications.release_car_wake_up(id);
    } else if (says(message, "RequestDiagnosticRestart for ")) {
        applications.request_restart(says(message, "RequestDiagnosticRestart for own VM") ? 1 : 5);
    } else if (says(message, "Received unused RequestDiagnosticRestart = ")) {
        auto const text = argument(message, 0);
        auto const digit = text.find_first_of("0123456789");
        applications.request_restart(digit == std::string::npos ? std::uint8_t(0)
                                                                : static_cast<std::uint8_t>(text[digit] - '0'));
    } else {
        return false;
    }
    return true;
}

void apply_client(Message const& message, Clients& clients) {
    auto const name = argument(message, 1);
    if (says(message, "client connected")) {
        clients.connect(name, {Client_manner::Answer::silent}, argument(message, 3));
    } else if (says(message, "client disconnected")) {
        clients.disconnect(name);
    } else if (says(message, "Client ")) {
        clients.report(name, argument(message, 3));
    }
}

}  // namespace simulation
