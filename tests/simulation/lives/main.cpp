// lives_of_machine COUNT [--seed SEED]: plays lives that are drawn from seeds, one after the other, under the rules of
// the machine. Ends with the first that breaks one, and prints its script, shrunk, for ap_whatif.

#include "life_played.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

constexpr int k_usage = 2;
constexpr std::size_t k_most_digits = 18;

struct Options {
    std::uint64_t lives{100'000};
    std::uint64_t seed{1};
};

int tell(std::uint64_t seed, std::string const& finding) {
    lives::Coverage unused;
    auto const finding_of = [&](lives::Lines const& lines) { return lives::played(lines, unused).finding; };
    auto const script =
        lives::shrunk(lives::drawn_life(seed), [&](auto const& lines) { return !finding_of(lines).empty(); });
    std::cout << "seed " << seed << ": " << finding << "\nThe lines of its script that break a rule, for ap_whatif:\n# "
              << finding_of(script) << '\n'
              << lives::text_of(script) << std::flush;
    return EXIT_FAILURE;
}

int play(Options const& options) {
    lives::Coverage coverage;
    std::uint64_t steps = 0;
    auto const start = std::chrono::steady_clock::now();
    for (std::uint64_t count = 0; count < options.lives; ++count) {
        auto const life = lives::played(lives::drawn_life(options.seed + count), coverage);
        steps += life.steps;
        if (!life.finding.empty()) {
            return tell(options.seed + count, life.finding);
        }
    }
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    std::cout << options.lives << " lives from seed " << options.seed << ", " << steps << " cycles in " << taken.count()
              << " s: no rule is broken\n"
              << coverage.text();
    if (auto const impossible = coverage.impossible(); !impossible.empty()) {
        std::cout << "situations that the tables do not lead to:\n" << impossible;
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App application{
        "Plays lives of the simulated machine that are drawn from seeds, and holds its rules in each cycle"};
    Options options;
    // What is converted wraps and saturates without a word.
    CLI::Validator const is_number(
        [](std::string const& text) {
            bool const is_one = !text.empty() && text.size() <= k_most_digits &&
                                text.find_first_not_of("0123456789") == std::string::npos;
            return is_one ? std::string() : '"' + text + "\" is no whole number of at most 18 digits";
        },
        "NUMBER");
    application.add_option("COUNT", options.lives, "How many lives")->capture_default_str()->check(is_number);
    application.add_option("--seed", options.seed, "The seed of the first; each further one has the next")
        ->capture_default_str()
        ->check(is_number);
    try {
        application.parse(argc, argv);
        if (options.lives == 0) {
            throw CLI::ValidationError("COUNT", "0 lives hold nothing");
        }
    } catch (CLI::ParseError const& error) {
        return application.exit(error) == 0 ? EXIT_SUCCESS : k_usage;
    }
    try {
        auto const status = play(options);
        if (!std::cout.flush()) {
            throw std::runtime_error("the output can't be written");
        }
        return status;
    } catch (std::exception const& error) {
        std::cerr << "lives_of_machine: " << error.what() << '\n';
        return k_usage;
    }
}
