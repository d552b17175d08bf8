#include "bench/network/service_commands.h"

#include <algorithm>
#include <array>

namespace bench::network {

namespace {

using nlohmann::json;

constexpr std::int64_t k_longest_delay_ms = 3'600'000;

json add_reaction(Services& services, Arguments& arguments) {
    auto const method = arguments.text_or("method", "*");
    Call_reaction reaction;
    reaction.refuse = arguments.flag_or("refuse", false);
    reaction.silent = arguments.flag_or("silent", false);
    reaction.delay = std::chrono::milliseconds(arguments.number_or("delay_ms", 0, 0, k_longest_delay_ms));
    auto const count = static_cast<std::uint64_t>(arguments.number_or("count", 1, 1, INT64_MAX));
    arguments.end();
    constexpr std::array<char const*, 5> k_methods{"*", "RequestNetwork", "ReleaseNetwork", "GetUserData",
                                                   "SetUserData"};
    if (std::find(k_methods.begin(), k_methods.end(), method) == k_methods.end()) {
        throw Command_error("\"" + method + "\" is no method of the network's services");
    }
    services.plan().add(method, reaction, count);
    return {{"method", method}};
}

}  // namespace

void add_service_commands(Command_table& table, Services& services) {
    table.add("reaction", [&services](Arguments& arguments) { return add_reaction(services, arguments); });
    table.add("clear_reactions", [&services](Arguments& arguments) {
        arguments.end();
        services.plan().clear();
        return json();
    });
    table.add("offer", [&services](Arguments& arguments) {
        arguments.end();
        services.offer();
        return json();
    });
    table.add("withdraw", [&services](Arguments& arguments) {
        arguments.end();
        services.withdraw();
        return json();
    });
}

}  // namespace bench::network
