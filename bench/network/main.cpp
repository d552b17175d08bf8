// A node of the virtual vehicle's network as a process. Speaks UDP network management with the other nodes, takes
// commands as JSON lines on standard input and tells what happens as JSON lines on standard output. See docs/bench.md.

#include "bench/network/commands.h"
#include "bench/network/options.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

#include <unistd.h>

namespace {

namespace players = bench::network;

constexpr int k_usage_error = 2;

int serve(players::Node_options const& options) {
    if (options.offered) {
        throw std::runtime_error("this build has no services to offer");
    }
    bench::Command_table commands;
    bench::Control_loop loop(STDIN_FILENO, STDOUT_FILENO, commands);
    players::Network_player player(options.network, loop);
    if (!options.capture.empty()) {
        player.start_capture(options.capture);
    }
    players::add_commands(commands, player);
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
