// An application of the virtual vehicle's machine as a process: it asks the state manager's services to keep the
// machine awake. Takes commands as JSON lines on standard input and tells what is offered to it as JSON lines on
// standard output. See docs/bench.md.

#include "bench/application/commands.h"
#include "bench/json_lines/control_loop.h"
#include "bench/task_queue/task_queue.h"
#include "tarq/com/runtime/component_singleton.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include <unistd.h>

namespace {

namespace players = bench::application;

constexpr int k_usage_error = 2;

int serve(std::string const& instance) {
    bench::Command_table commands;
    bench::Control_loop loop(STDIN_FILENO, STDOUT_FILENO, commands);
    bench::Task_queue news;
    loop.watch(news.descriptor(), [&] { news.run_all(); });
    tarq::com::runtime::Component_singleton const communication(false, "");
    players::Application application(instance, [&](players::Means means, bool is_offered) {
        news.post([&loop, means, is_offered] {
            loop.event(is_offered ? "offered" : "withdrawn", {{"what", name(means)}});
        });
    });
    players::add_commands(commands, application);
    loop.event("ready", {{"instance", instance}});
    return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_application INSTANCE\n");
        return k_usage_error;
    }
    try {
        return serve(argv[1]);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "bench_application: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
