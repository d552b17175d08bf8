#include "bench/console/network_keys.h"

#include "base/hex.h"

#include <map>
#include <string>

namespace bench::console {

namespace {

using nlohmann::json;

/// Asks for what the chosen application does not hold, and gives back what it holds. Each application has bits of its
/// own: AC 1 and CAB 8 the first one.
void toggle(char const* what, vehicle::Machine& machine, Machine_view const& view, Network_hand const& hand) {
    auto const& name = hand.applications.at(hand.chosen);
    bool const is_held = view.holds(name, what);
    json command{{"do", is_held ? "release" : "request"}, {"what", what}, {"wait_ms", 0}};
    if (std::string(what) == "com_alive") {
        command["bits"] = base::to_hex(services::Octets{0, static_cast<std::uint8_t>(1U << hand.chosen % 8)});
    }
    if (!is_held && std::string(what) != "ecu_alive") {
        command["ac"] = hand.chosen + 1;
    }
    machine.tell("application " + name, command);
}

void toggle_need(vehicle::Machine& machine, Network_hand& hand) {
    machine.tell("other node", {{"do", hand.others_need_network ? "release" : "request"}, {"bits", "80"}});
    hand.others_need_network = !hand.others_need_network;
}

void toggle_silence(vehicle::Machine& machine, Network_hand& hand) {
    machine.tell("other node", {{"do", hand.others_silent ? "speak" : "silence"}});
    hand.others_silent = !hand.others_silent;
}

bool act(int key, vehicle::Machine& machine, Machine_view const& view, Network_hand& hand) {
    static auto const& means = *new std::map<int, char const*>{{'e', "ecu_alive"}, {'m', "com_alive"}, {'k', "cwu"}};
    auto const found = means.find(key);
    if (key == 'a') {
        hand.chosen = (hand.chosen + 1) % hand.applications.size();
    } else if (found != means.end()) {
        toggle(found->second, machine, view, hand);
    } else if (key == 'd') {
        hand.instead_of_clients = !hand.instead_of_clients;
    } else if (key == 'b') {
        toggle_need(machine, hand);
    } else if (key == 'v') {
        toggle_silence(machine, hand);
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool handle_network_key(int key, vehicle::Machine& machine, Machine_view const& view, Network_hand& hand) {
    if (hand.applications.empty()) {
        return false;
    }
    return act(key, machine, view, hand);
}

}  // namespace bench::console
