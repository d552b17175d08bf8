// The hypervisor of the virtual vehicle as a process: mounts input devices and VM-control files, takes commands as JSON
// lines on standard input and tells what happens as JSON lines on standard output. See docs/bench.md.

#include "bench/hypervisor/commands.h"
#include "bench/hypervisor/fuse_server.h"
#include "bench/hypervisor/model.h"
#include "bench/json_lines/control_loop.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr int k_usage_error = 2;
constexpr std::uint64_t k_keyboard = 0b11;  // EV_SYN and EV_KEY

int serve(std::string const& directory, unsigned long devices) {
    bench::hypervisor::Model model;
    for (unsigned long index = 0; index < devices; ++index) {
        model.add_device("event" + std::to_string(index), k_keyboard);
    }
    bench::Command_table commands;
    bench::hypervisor::add_commands(commands, model);
    bench::Control_loop loop(STDIN_FILENO, STDOUT_FILENO, commands);
    bench::hypervisor::Fuse_server const server(model, loop, directory);
    loop.event("ready", {{"directory", directory}, {"devices", devices}});
    return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> const words(argv + 1, argv + argc);
    bool const counted = words.size() == 3 && words[0] == "--devices";
    if (words.size() != 1 && !counted) {
        std::fprintf(stderr, "usage: bench_hypervisor [--devices N] MOUNT_DIR\n");
        return k_usage_error;
    }
    try {
        return serve(words.back(), counted ? std::stoul(words[1]) : 1);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "bench_hypervisor: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
