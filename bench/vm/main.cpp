// The target machine under an emulator: `virtual_machine IMAGE` in a terminal is the console of the virtual vehicle on
// this machine; `--tour`, and without a terminal, it goes through the states by itself and checks each step;
// `--figures` measures.

#include "bench/console/console.h"
#include "bench/console/terminal_check.h"
#include "bench/process/end_signals.h"
#include "bench/tour/picture.h"
#include "bench/tour/tour.h"
#include "bench/vm/figures.h"
#include "bench/vm/steps.h"
#include "bench/vm/virtual_machine.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using bench::vm::Machine_options;
using bench::vm::Virtual_machine;

constexpr int k_usage_error = 2;

/// Leaves what it is doing when a signal has come, so that emulator and directory go in order.
class Interrupted_machine : public Virtual_machine {
 public:
    using Virtual_machine::Virtual_machine;

    void update(std::chrono::milliseconds limit) override {
        Virtual_machine::update(limit);
        if (bench::noted_end_signal() != 0) {
            throw std::runtime_error("ended by signal " + std::to_string(bench::noted_end_signal()));
        }
    }
};

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
        } else if (word->rfind('-', 0) != 0 && arguments.image.empty()) {
            arguments.image = *word;
        } else {
            arguments.are_wrong = true;
        }
    }
    arguments.are_wrong = arguments.are_wrong || arguments.image.empty();
    return arguments;
}

// The file is opened before the tour: it takes minutes.
int tour(Virtual_machine& machine, std::ofstream& picture) {
    auto const findings = bench::tour::walk(machine, bench::vm::steps(), Virtual_machine::k_boot_patience);
    bool const all_seen = bench::tour::print_summary(findings);
    if (picture.is_open() && !(picture << bench::tour::draw(machine.events()) << std::flush)) {
        std::fputs("The picture can't be written\n", stderr);
        return EXIT_FAILURE;
    }
    return all_seen ? EXIT_SUCCESS : EXIT_FAILURE;
}

int console(Virtual_machine& machine) {
    return bench::console::run(machine, "/dev/null", services::layout_in(machine.configuration()));
}

int visit(Arguments const& arguments) {
    std::ofstream picture;
    if (arguments.touring && !arguments.picture.empty()) {
        picture.open(arguments.picture);
        if (!picture) {
            throw std::runtime_error(arguments.picture + " can't be written");
        }
    }
    Machine_options options;
    options.image = arguments.image;
    options.with_vehicle = !arguments.measuring;
    Interrupted_machine machine(options);
    if (arguments.measuring) {
        return bench::vm::print_figures(machine) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    return arguments.touring ? tour(machine, picture) : console(machine);
}

}  // namespace

int main(int argc, char** argv) {
    auto const arguments = parse({argv + 1, argv + argc});
    if (arguments.are_wrong) {
        std::fputs("usage: virtual_machine [--tour] [--picture FILE] [--figures] IMAGE\n", stderr);
        return k_usage_error;
    }
    bool const draws = !arguments.touring && !arguments.measuring;
    if (auto const why = draws ? bench::console::why_no_console() : std::string(); !why.empty()) {
        std::fprintf(stderr, "virtual_machine: %s\n", why.c_str());
        return EXIT_FAILURE;
    }
    bench::note_end_signals();
    try {
        return visit(arguments);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "virtual_machine: %s\n", error.what());
        return bench::noted_end_signal() == 0 ? EXIT_FAILURE : bench::k_signal_status + bench::noted_end_signal();
    }
}
