#include "bench/client/commands.h"

namespace bench::client {

namespace {

constexpr std::int64_t k_longest_delay_ms = 3'600'000;
constexpr std::int64_t k_highest_status = 255;

Behaviour behaviour_in(Arguments& arguments) {
    auto const manner = manner_named(arguments.text("as"));
    if (!manner) {
        throw Command_error("\"as\" must be well, late, silent, failing or crashing");
    }
    Behaviour behaviour;
    behaviour.manner = *manner;
    behaviour.delay =
        std::chrono::milliseconds(arguments.number_or("delay_ms", behaviour.delay.count(), 0, k_longest_delay_ms));
    behaviour.status = static_cast<int>(arguments.number_or("status", behaviour.status, 1, k_highest_status));
    arguments.end();
    return behaviour;
}

}  // namespace

void add_commands(Command_table& table, Client_player& player) {
    table.add("behave", [&player](Arguments& arguments) {
        player.behave(behaviour_in(arguments));
        return nlohmann::json();
    });
    table.add("list", [&player](Arguments& arguments) {
        arguments.end();
        return player.describe();
    });
}

}  // namespace bench::client
