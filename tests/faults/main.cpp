// Lets the system calls of the daemon fail, one in each life, in the virtual vehicle; `./test --faults`.

#include "bench/process/unasked_end.h"
#include "bench/vehicle/world.h"
#include "sweep.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <sys/wait.h>

namespace {

constexpr int k_usage_error = 2;

void print_usage(std::FILE* out) {
    std::fputs(
        "usage: faults [--sample SECONDS] [--seed NUMBER] [--pairs COUNT] [--life NAME] [--match TEXT]\n"
        "Lets each system call of the daemon fail once, in all ways that are plausible, and tells what is wrong then.\n"
        "  --sample SECONDS  as many faults as that takes\n"
        "  --seed NUMBER     draws the order and the pairs (1)\n"
        "  --pairs COUNT     at most so many lives with two faults, among the others (200)\n"
        "  --life NAME       only \"plain\", \"requests\", \"post run\" or \"fast shutdown\"\n"
        "  --match TEXT      only faults whose line has this text, each with its outcome\n"
        "Exit status: 0, 1 when something is wrong, 2 for a wrong option, 77 where processes may not be watched.\n",
        out);
}

unsigned number_in(std::string const& word) {
    if (word.empty() || word.find_first_not_of("0123456789") != std::string::npos || word.size() > 9) {
        throw std::invalid_argument('"' + word + "\" is no number");
    }
    return static_cast<unsigned>(std::stoul(word));
}

faults::Options options_in(std::vector<std::string> const& words) {
    faults::Options options;
    for (std::size_t place = 0; place < words.size(); place += 2) {
        auto const& option = words[place];
        if (place + 1 == words.size()) {
            throw std::invalid_argument(option + " needs a value");
        }
        auto const& value = words[place + 1];
        if (option == "--sample") {
            options.sample = std::chrono::seconds(number_in(value));
        } else if (option == "--seed") {
            options.seed = number_in(value);
        } else if (option == "--pairs") {
            options.pairs = number_in(value);
        } else if (option == "--life") {
            options.life = value;
        } else if (option == "--match") {
            options.match = value;
        } else {
            throw std::invalid_argument(option + " is not known");
        }
    }
    std::ifstream example(FAULTS_PROJECT "/deploy/config/ap_statemanager.json");
    options.example.assign(std::istreambuf_iterator<char>(example), {});
    // tests/faults/faults in the build
    options.programs =
        std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().parent_path().string();
    return options;
}

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
    std::vector<std::string> const words(argv + 1, argv + argc);
    if (!words.empty() && words.front() == "--help") {
        print_usage(stdout);
        return EXIT_SUCCESS;
    }
    try {
        auto const options = options_in(words);
        return bench::vehicle::run_inside(FAULTS_PROJECT, [&options] { return sweep(options); });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "faults: %s\n", error.what());
        print_usage(stderr);
        return k_usage_error;
    }
}
