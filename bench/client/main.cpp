// A client of the state manager as a process of the virtual vehicle. Takes commands as JSON lines on standard input and
// tells what happens as JSON lines on standard output. See docs/bench.md.

#include "bench/client/client_player.h"
#include "bench/client/commands.h"
#include "bench/json_lines/control_loop.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr int k_usage_error = 2;

int serve(bench::client::Client_options const& options) {
    bench::Command_table commands;
    bench::Control_loop loop(STDIN_FILENO, STDOUT_FILENO, commands);
    bench::client::Client_player player(options, loop);
    bench::client::add_commands(commands, player);
    loop.event("ready", {{"name", options.name}});
    return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> const words(argv + 1, argv + argc);
    if (words.empty() || words.size() > 3 || words.front().rfind("--", 0) == 0) {
        std::fprintf(stderr, "usage: bench_client NAME [STATE [SOCKET]]\n");
        return k_usage_error;
    }
    bench::client::Client_options options{words[0]};
    options.state = words.size() > 1 ? words[1] : options.state;
    options.socket_path = words.size() > 2 ? words[2] : options.socket_path;
    try {
        return serve(options);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "bench_client: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
