// Leads the daemon through lives that are drawn from seeds, in the virtual vehicle; `./test --soak`.

#include "bench/process/unasked_end.h"
#include "bench/vehicle/world.h"
#include "player.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace {

constexpr int k_usage_error = 2;
constexpr char const* k_usage =
    "usage: soak [SECONDS] [--seed NUMBER] | --script FILE | --print NUMBER\n"
    "Leads the daemon through one life after the other, each drawn from a seed, until the time is over (60 s) or\n"
    "something is wrong.\n"
    "  --seed NUMBER   of the first life; the next ones follow it (1)\n"
    "  --script FILE   this life only, written as --print does\n"
    "  --print NUMBER  writes the life of that seed, and plays nothing\n";

struct Options {
    std::chrono::seconds time{60};
    std::uint64_t seed{1};
    std::optional<soak::Script> script{};
    std::string programs;
    std::string example;
};

std::vector<std::string> unasked;

std::string content_of(std::string const& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::invalid_argument(path + " can't be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uint64_t number_in(std::string const& word) {
    if (word.empty() || word.find_first_not_of("0123456789") != std::string::npos || word.size() > 18) {
        throw std::invalid_argument('"' + word + "\" is no number");
    }
    return std::stoull(word);
}

Options options_in(std::vector<std::string> const& words) {
    Options options;
    for (std::size_t place = 0; place < words.size(); ++place) {
        auto const& word = words[place];
        bool const is_option = word.rfind("--", 0) == 0;
        if (is_option && place + 1 == words.size()) {
            throw std::invalid_argument(word + " needs a value");
        }
        if (!is_option) {
            options.time = std::chrono::seconds(number_in(word));
        } else if (word == "--seed") {
            options.seed = number_in(words[++place]);
        } else if (word == "--script") {
            options.script = soak::parsed(content_of(words[++place]));
        } else {
            throw std::invalid_argument(word + " is not known");
        }
    }
    options.example = content_of(SOAK_PROJECT "/deploy/config/ap_statemanager.json");
    // tests/soak/soak in the build
    options.programs =
        std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path().parent_path().string();
    return options;
}

struct Sum {
    unsigned scripts{0};
    unsigned steps{0};
    unsigned daemons{0};
    unsigned suspends{0};
};

// The machine ends with the player, so that what its programs came to is known as well.
bool holds(soak::Script const& script, std::string const& name, Options const& options, Sum& sum) {
    std::vector<std::string> findings;
    std::string last_events;
    {
        soak::Player player(script, options.programs, options.example);
        findings = player.play();
        std::printf("%s: %zu steps, %u daemons, %u suspends\n", name.c_str(), script.steps.size(), player.lives(),
                    player.suspends());
        sum.daemons += player.lives();
        sum.suspends += player.suspends();
        last_events = player.last_events();
        if (!player.cannot_freeze().empty()) {
            std::printf("Nothing was frozen: %s\n", player.cannot_freeze().c_str());
        }
    }
    ++sum.scripts;
    sum.steps += static_cast<unsigned>(script.steps.size());
    findings.insert(findings.end(), unasked.begin(), unasked.end());
    if (!findings.empty()) {
        std::printf("# %s\n%s", name.c_str(), text_of(script).c_str());
        std::printf("# What happened last:\n%s", last_events.c_str());
        for (auto const& finding : findings) {
            std::printf("WRONG with %s, %s\n", name.c_str(), finding.c_str());
        }
    }
    std::fflush(stdout);
    return findings.empty();
}

bool play(Options const& options) {
    using Clock = std::chrono::steady_clock;
    auto const begin = Clock::now();
    Sum sum;
    bool well = true;
    if (options.script) {
        well = holds(*options.script, "the script", options, sum);
    } else {
        for (auto seed = options.seed; well && Clock::now() - begin < options.time; ++seed) {
            well = holds(soak::drawn(seed), "seed " + std::to_string(seed), options, sum);
        }
    }
    std::printf("%u lives of the machine with %u steps, %u daemons and %u suspends in %lld s: %s\n", sum.scripts,
                sum.steps, sum.daemons, sum.suspends,
                static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin).count()),
                well ? "all held" : "something is wrong");
    std::fflush(stdout);
    return well;
}

int play_inside(Options const& options) {
    bench::hear_unasked_ends([](std::string const& what) { unasked.push_back(what); });
    try {
        return play(options) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return EXIT_FAILURE;
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> const words(argv + 1, argv + argc);
    try {
        if (words.size() == 1 && words[0] == "--help") {
            std::fputs(k_usage, stdout);
            return EXIT_SUCCESS;
        }
        if (words.size() == 2 && words[0] == "--print") {
            std::fputs(text_of(soak::drawn(number_in(words[1]))).c_str(), stdout);
            return EXIT_SUCCESS;
        }
        auto const options = options_in(words);
        return bench::vehicle::run_inside(SOAK_PROJECT, [&options] { return play_inside(options); });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "soak: %s\n%s", error.what(), k_usage);
        return k_usage_error;
    }
}
