#ifndef TESTS_SYSTEM_VEHICLE_NETWORK_MACHINE_H
#define TESTS_SYSTEM_VEHICLE_NETWORK_MACHINE_H

#include "story.h"

#include <chrono>
#include <stdexcept>
#include <string>

namespace bench::vehicle {

/// A machine that uses network management, with a network manager, another node of the vehicle, and the applications
/// "1" and "2". The states hold the network by its first bit.
class Network_story : public Story {
 protected:
    Network_story() {
        options.with_network = true;
        settings()["StateManagerNMUsage"] = true;
        settings()["DefautNMRequestPattern"] = {1, 0, 0, 0, 0, 0};
    }

    void start_and_run() {
        Story::start_and_run();
        ASSERT_TRUE(sees(Kind::network_state, "01 00 00 00 00 00"));
    }

    void request(std::string const& application, nlohmann::json what) { ask(application, "request", std::move(what)); }
    void release(std::string const& application, nlohmann::json what) { ask(application, "release", std::move(what)); }

    /// Asks for a restart in the name of diagnostics.
    void restart(int type) { ask("1", "restart", {{"type", type}}); }

    /// Gives a neighbour a command, again and again while it can't reach the services yet.
    void insist(std::string const& neighbour, nlohmann::json const& command) {
        auto const end = std::chrono::steady_clock::now() + Machine::k_patience;
        for (;;) {
            try {
                machine->tell(neighbour, command);
                return;
            } catch (std::runtime_error const&) {
                if (std::chrono::steady_clock::now() > end) {
                    throw;
                }
            }
            machine->watch(std::chrono::milliseconds(10));
        }
    }

    void tell_node(nlohmann::json const& command) { machine->tell("node", command); }

    /// What the machine's node is asked for on behalf of the machine.
    std::string requests_of_node() { return machine->tell("node", {{"do", "list"}}).at("requests"); }

 private:
    void ask(std::string const& application, char const* verb, nlohmann::json what) {
        what["do"] = verb;
        insist("application " + application, what);
    }
};

inline nlohmann::json const k_ecu_alive{{"what", "ecu_alive"}};

inline nlohmann::json com_alive(char const* bits, int ac_number) {
    return {{"what", "com_alive"}, {"bits", bits}, {"ac", ac_number}};
}
inline nlohmann::json com_alive(char const* bits) {
    return {{"what", "com_alive"}, {"bits", bits}};
}
inline nlohmann::json car_wake_up(int ac_number) {
    return {{"what", "cwu"}, {"ac", ac_number}};
}
inline nlohmann::json const k_car_wake_up{{"what", "cwu"}};

}  // namespace bench::vehicle

#endif
