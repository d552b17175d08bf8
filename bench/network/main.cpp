// A node of the virtual vehicle's network as a process. Speaks UDP network management with the other nodes, takes
// commands as JSON lines on standard input and tells what happens as JSON lines on standard output. See docs/bench.md.

#include "bench/network/commands.h"
#include "bench/network/options.h"
#include "bench/network/service_commands.h"
#include "tarq/com/runtime/component_singleton.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>

#include <unistd.h>

namespace {

namespace players = bench::network;

constexpr int k_usage_error = 2;

/// The services with the communication that carries them.
struct Offering {
    Offering(players::Node_options const& options, players::Network_player& player, bench::Control_loop& loop,
             bench::Command_table& commands)
        : services(*options.offered, options.tells_first_state, player, loop) {
        players::add_service_commands(commands, services);
    }

    tarq::com::runtime::Component_singleton communication{false, ""};
    players::Services services;
};

int serve(players::Node_options const& options) {
    bench::Command_table commands;
    bench::Control_loop loop(STDIN_FILENO, STDOUT_FILENO, commands);
    players::Network_player player(options.network, loop);
    if (!options.capture.empty()) {
        player.start_capture(options.capture);
    }
    players::add_commands(commands, player);
    std::optional<Offering> offering;
    if (options.offered) {
        offering.emplace(options, player, loop, commands);
    }
    loop.event("ready", {{"node", options.network.id}, {"port", options.network.own.port}});
    return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
    players::Node_options options;
    try {
        options = players::parse_options({argv + 1, argv + argc});
    } catch (std::exception const& error) {
        std::fprintf(stderr, "bench_network_node: %s\n%s", error.what(), players::k_usage);
        return k_usage_error;
    }
    try {
        return serve(options);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "bench_network_node: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
