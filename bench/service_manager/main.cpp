// The service manager of the virtual vehicle as a process: org.freedesktop.systemd1 on a private bus and the notify
// socket. Takes commands as JSON lines on standard input and tells what it was asked as JSON lines on standard output.
// See docs/bench.md.

#include "bench/json_lines/control_loop.h"
#include "bench/service_manager/bus_server.h"
#include "bench/service_manager/commands.h"
#include "bench/service_manager/manager.h"
#include "bench/service_manager/notify_socket.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

namespace players = bench::service_manager;

constexpr int k_usage_error = 2;

void add_units(players::Units& units, std::vector<std::string> const& words) {
    for (std::string const& word : words) {
        std::size_t const equals = word.find('=');
        units.add(word.substr(0, equals), equals == std::string::npos ? "inactive" : word.substr(equals + 1));
    }
}

void report_notifications(bench::Control_loop& loop, players::Manager& manager, players::Notify_socket const& socket) {
    while (auto const notification = socket.receive()) {
        manager.reports().count(*notification);
        loop.event("notify", {{"t", notification->time},
                              {"pid", notification->pid},
                              {"variables", nlohmann::json(notification->variables)}});
    }
}

int serve(std::string const& socket_path, std::vector<std::string> const& units) {
    players::Manager manager;
    add_units(manager.units(), units);
    bench::Command_table commands;
    players::add_commands(commands, manager);
    bench::Control_loop loop(STDIN_FILENO, STDOUT_FILENO, commands);
    players::Notify_socket const socket(socket_path);
    loop.watch(socket.descriptor(), [&] { report_notifications(loop, manager, socket); });
    players::Bus_server const server(manager, loop);
    loop.event("ready", {{"notify_socket", socket_path}});
    return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty()) {
        std::fprintf(stderr, "usage: bench_service_manager NOTIFY_SOCKET [UNIT[=ACTIVE_STATE]]...\n");
        return k_usage_error;
    }
    std::string const socket_path = words.front();
    words.erase(words.begin());
    if (words.empty()) {
        words = {"MachineState-Startup.target=active", "MachineState-Running.target", "MachineState-Shutdown.target"};
    }
    try {
        return serve(socket_path, words);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "bench_service_manager: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
