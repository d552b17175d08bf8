// Lets the system calls of the daemon fail, one in each life, in the virtual vehicle; `./test --faults`.

#include "bench/process/unasked_end.h"
#include "bench/vehicle/world.h"
#include "sweep.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <sys/wait.h>

namespace {

constexpr int k_usage_error = 2;

// The status of fault_at_call, which says why, where a process may not be watched or can't be.
int watching_by(faults::Options const& options) {
    int const status =
        std::system((options.programs + "/tests/faults/fault_at_call /dev/null /dev/null /bin/true").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

int sweep(faults::Options const& options) {
    if (int const status = watching_by(options); status != EXIT_SUCCESS) {
        return status;
    }
    // Each life is judged by its own verdict.
    bench::hear_unasked_ends([](std::string const& /*what*/) {});
    try {
        return faults::Sweep(options).run() ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "faults: %s\n", error.what());
        return EXIT_FAILURE;
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App application{
        "Lets each system call of the daemon fail once, in all ways that are plausible, and tells what is wrong then"};
    application.footer(
        "Exit status: 0, 1 when something is wrong, 2 for a wrong option, 77 where processes may not be watched.");
    faults::Options options;
    application.add_option("--sample", options.sample, "As many faults as fit into so many seconds");
    application.add_option("--seed", options.seed, "Draws the order and the pairs")->capture_default_str();
    application.add_option("--pairs", options.pairs, "At most so many lives with two faults, among the others")
        ->capture_default_str();
    std::set<std::string> names;
    for (auto const& life : faults::lives()) {
        names.insert(life.name);
    }
    application.add_option("--life", options.life, "Only this one")->check(CLI::IsMember(names));
    application.add_option("--match", options.match, "Only faults whose line has this text, each with its outcome");
    try {
        application.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return application.exit(error) == 0 ? EXIT_SUCCESS : k_usage_error;
    }
    std::ifstream example(FAULTS_PROJECT "/deploy/config/ap_statemanager.json");
    options.example.assign(std::istreambuf_iterator<char>(example), {});
    // tests/faults/faults in the build
    options.programs =
        std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().parent_path().string();
    try {
        return bench::vehicle::run_inside(FAULTS_PROJECT, [&options] { return sweep(options); });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "faults: %s\n", error.what());
        return k_usage_error;
    }
}
