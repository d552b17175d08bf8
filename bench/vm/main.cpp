// The target machine under an emulator: `virtual_machine IMAGE` in a terminal is the console of the virtual vehicle on
// this machine; `--tour`, and without a terminal, it goes through the states by itself and checks each step;
// `--figures` measures.

#include "bench/console/console.h"
#include "bench/tour/picture.h"
#include "bench/tour/tour.h"
#include "bench/vm/figures.h"
#include "bench/vm/steps.h"
#include "bench/vm/virtual_machine.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using bench::vm::Machine_options;
using bench::vm::Virtual_machine;

constexpr int k_usage_error = 2;

struct Arguments {
    std::string image;
    std::string picture;
    bool touring{false};
    bool measuring{false};
    bool are_wrong{false};
};

Arguments parse(std::vector<std::string> const& words) {
    Arguments arguments;
    arguments.touring = ::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (*word == "--tour") {
            arguments.touring = true;
        } else if (*word == "--figures") {
            arguments.measuring = true;
        } else if (*word == "--picture" && word + 1 != words.end()) {
            arguments.picture = *++word;
        } else if (word->front() != '-' && arguments.image.empty()) {
            arguments.image = *word;
        } else {
            arguments.are_wrong = true;
        }
    }
    arguments.are_wrong = arguments.are_wrong || arguments.image.empty();
    return arguments;
}

int tour(Virtual_machine& machine, std::string const& picture) {
    auto const findings = bench::tour::walk(machine, bench::vm::steps(), Virtual_machine::k_boot_patience);
    bool const all_seen = bench::tour::print_summary(findings);
    if (!picture.empty() && !(std::ofstream(picture) << bench::tour::draw(machine.events()) << std::flush)) {
        std::fprintf(stderr, "%s can't be written\n", picture.c_str());
        return EXIT_FAILURE;
    }
    return all_seen ? EXIT_SUCCESS : EXIT_FAILURE;
}

int console(Virtual_machine& machine) {
    return bench::console::run(machine, "/dev/null", statectl::layout_in(machine.configuration()));
}

}  // namespace

int main(int argc, char** argv) {
    auto const arguments = parse({argv + 1, argv + argc});
    if (arguments.are_wrong) {
        std::fputs("usage: virtual_machine [--tour] [--picture FILE] [--figures] IMAGE\n", stderr);
        return k_usage_error;
    }
    try {
        Machine_options options;
        options.image = arguments.image;
        options.with_vehicle = !arguments.measuring;
        Virtual_machine machine(options);
        if (arguments.measuring) {
            return bench::vm::print_figures(machine) ? EXIT_SUCCESS : EXIT_FAILURE;
        }
        return arguments.touring ? tour(machine, arguments.picture) : console(machine);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "virtual_machine: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
