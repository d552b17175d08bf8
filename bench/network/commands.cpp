#include "bench/network/commands.h"

#include "base/hex.h"

namespace bench::network {

namespace {

using nlohmann::json;

Bits requests_of(Network_player const& player, Arguments& arguments) {
    auto bits = bytes_of(arguments, "bits", player.options().request_bytes);
    arguments.end();
    return bits;
}

json request(Network_player& player, Arguments& arguments) {
    auto const bits = requests_of(player, arguments);
    player.act([&](Nm_node& node, Time now) { node.request(bits, now); });
    return {{"requests", base::to_hex(player.node().requests())}};
}

json release(Network_player& player, Arguments& arguments) {
    auto const bits = requests_of(player, arguments);
    player.act([&](Nm_node& node, Time now) { node.release(bits, now); });
    return {{"requests", base::to_hex(player.node().requests())}};
}

json set_user_data(Network_player& player, Arguments& arguments) {
    auto const data = bytes_of(arguments, "bytes", k_most_user_data);
    arguments.end();
    player.act([&](Nm_node& node, Time /*now*/) { node.set_user_data(data); });
    return {{"user_data", base::to_hex(data)}};
}

json repeat_message(Network_player& player, Arguments& arguments) {
    arguments.end();
    player.act([](Nm_node& node, Time now) { node.want_repeat(now); });
    return {};
}

json set_silent(Network_player& player, Arguments& arguments, bool silent) {
    arguments.end();
    player.act([silent](Nm_node& node, Time /*now*/) { node.set_silent(silent); });
    return {};
}

json send(Network_player& player, Arguments& arguments) {
    constexpr std::size_t k_longest_datagram = 1400;
    auto const bytes = bytes_of(arguments, "bytes", k_longest_datagram);
    arguments.end();
    player.send_raw(bytes);
    return {};
}

json start_capture(Network_player& player, Arguments& arguments) {
    auto const file = arguments.text("file");
    arguments.end();
    try {
        player.start_capture(file);
    } catch (std::runtime_error const& error) {
        throw Command_error(error.what());
    }
    return {{"file", file}};
}

json stop_capture(Network_player& player, Arguments& arguments) {
    arguments.end();
    player.stop_capture();
    return {};
}

json list(Network_player& player, Arguments& arguments) {
    arguments.end();
    auto const& node = player.node();
    json nodes = json::array();
    for (auto const& [id, peer] : node.peers()) {
        nodes.push_back({{"node", id},
                         {"control", peer.control},
                         {"requests", base::to_hex(peer.requests)},
                         {"user_data", base::to_hex(peer.user_data)}});
    }
    return {{"node", node.id()},
            {"state", name(node.state())},
            {"network_state", base::to_hex(node.network_state())},
            {"requests", base::to_hex(node.requests())},
            {"user_data", base::to_hex(node.user_data())},
            {"silent", node.silent()},
            {"nodes", nodes}};
}

}  // namespace

Bits bytes_of(Arguments& arguments, std::string const& name, std::size_t most) {
    auto const bytes = base::from_hex(arguments.text(name));
    if (!bytes) {
        throw Command_error("\"" + name + "\" must be bytes such as \"00 00 01 00\"");
    }
    if (bytes->size() > most) {
        throw Command_error("\"" + name + "\" has more than " + std::to_string(most) + " bytes");
    }
    return *bytes;
}

void add_commands(Command_table& table, Network_player& player) {
    using Operation = json (*)(Network_player&, Arguments&);
    auto const add = [&](char const* name, Operation operation) {
        table.add(name, [&player, operation](Arguments& arguments) { return operation(player, arguments); });
    };
    add("request", &request);
    add("release", &release);
    add("user_data", &set_user_data);
    add("repeat_message", &repeat_message);
    add("send", &send);
    add("capture", &start_capture);
    add("stop_capture", &stop_capture);
    add("list", &list);
    table.add("silence", [&player](Arguments& arguments) { return set_silent(player, arguments, true); });
    table.add("speak", [&player](Arguments& arguments) { return set_silent(player, arguments, false); });
}

}  // namespace bench::network
