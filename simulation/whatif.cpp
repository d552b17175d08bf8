// ap_whatif: plays a script of events against the daemon's decisions, in virtual time.

#include "simulation/configuration.h"
#include "simulation/play.h"
#include "simulation/report.h"
#include "simulation/trace_check.h"
#include "simulation/trace_life.h"
#include "simulation/worst.h"

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int k_missed = 1;
constexpr int k_bad_input = 2;

struct Options {
    std::string script;
    std::string configuration;
    std::string worst;
    std::string trace;
    bool with_json{false};
    bool with_log{false};
};

/// More than any that is not refused for something else; an endless one ends here.
enum class Most : std::size_t { script = 32, configuration = 2, trace = 256 };  // MiB

std::string read(std::string const& path, Most most) {
    if (path.empty()) {
        return "";
    }
    auto const mebibytes = static_cast<std::size_t>(most);
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
    }
    auto& stream = path == "-" ? std::cin : static_cast<std::istream&>(file);
    std::string text;
    std::vector<char> piece(1U << 16U);
    while (stream.read(piece.data(), static_cast<std::streamsize>(piece.size())) || stream.gcount() > 0) {
        text.append(piece.data(), static_cast<std::size_t>(stream.gcount()));
        if (text.size() > mebibytes << 20U) {
            throw std::runtime_error("it has more than " + std::to_string(mebibytes) + " MiB");
        }
    }
    if (stream.bad() || (path != "-" && !file.is_open())) {
        throw std::runtime_error("it can't be read");
    }
    return text;
}

int play(Options const& options, simulation::Script const& script, std::string const& configuration) {
    if (!options.worst.empty()) {
        for (auto const& goal : simulation::goals()) {
            if (options.worst == goal.name) {
                std::cout << simulation::Longest_way(script, configuration, goal).text() << std::flush;
            }
        }
        return 0;
    }
    auto const outcome = simulation::play(script, configuration, options.with_log);
    std::cout << (options.with_json ? json_of(outcome) : text_of(outcome)) << std::flush;
    return outcome.is_kept() ? 0 : k_missed;
}

/// Nothing where there is no file. One that the daemon refuses is refused before anything is judged with it.
std::optional<std::string> read_configuration(std::string const& path) {
    return path.empty() ? std::nullopt
                        : std::optional(simulation::configuration_of({}, read(path, Most::configuration)));
}

int check_trace(Options const& options) {
    auto subject = options.trace;
    try {
        auto const found = simulation::lives_of(read(options.trace, Most::trace));
        auto const& lives = found.lives;
        subject = options.configuration;
        auto const configuration = read_configuration(options.configuration);
        subject = options.trace;
        bool agrees = true;
        for (std::size_t place = 0; place < lives.size(); ++place) {
            auto const verdict = configuration ? simulation::check(lives[place], *configuration)
                                               : simulation::check_as_told(lives[place]);
            std::cout << "life " << place + 1 << ": " << simulation::text_of(verdict) << std::endl;
            agrees = agrees && verdict.kind != simulation::Trace_verdict::Kind::disagrees;
        }
        if (found.first_gap) {
            std::cout << found.strange_bytes << " bytes are no messages, the first is byte " << *found.first_gap
                      << std::endl;
        }
        return agrees ? 0 : k_missed;
    } catch (std::exception const& error) {
        std::cerr << "ap_whatif: " << subject << ": " << error.what() << '\n';
    }
    return k_bad_input;
}

int read_and_play(Options const& options) {
    auto subject = options.script;
    try {
        auto const script = simulation::parse_script(read(options.script, Most::script));
        subject = options.configuration.empty() ? subject : options.configuration;
        auto const file = options.configuration.empty()
                              ? std::nullopt
                              : std::optional(read(options.configuration, Most::configuration));
        return play(options, script, simulation::configuration_of(script, file));
    } catch (simulation::Script_error const& error) {
        std::cerr << "ap_whatif: " << options.script << ':' << error.what() << '\n';
    } catch (std::exception const& error) {
        std::cerr << "ap_whatif: " << (subject.empty() ? "" : subject + ": ") << error.what() << '\n';
    }
    return k_bad_input;
}

/// The status, unless what was printed is lost.
int written(int status) {
    std::cout.flush();
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0 || !std::cout) {
        std::cerr << "ap_whatif: the output can't be written\n";
        return status == 0 ? k_missed : status;
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App application{"Tells what the state manager would do: plays a script in virtual time"};
    Options options;
    auto* const script =
        application.add_option("SCRIPT", options.script, "What happens, a line an event; - is standard input");
    application.add_option("--config", options.configuration, "Configuration file of the daemon (default: built in)");
    auto* const json = application.add_flag("--json", options.with_json, "Print JSON");
    auto* const log = application.add_flag("--log", options.with_log, "Show what the daemon logs as well");
    auto* const worst =
        application.add_option("--worst", options.worst, "Search for the longest suspend, resume or shutdown")
            ->check(CLI::IsMember({"suspend", "resume", "shutdown"}))
            ->excludes(json)
            ->excludes(log);
    application.add_option("--trace", options.trace, "Hold a DLT trace of the daemon against the rules")
        ->excludes(script)
        ->excludes(worst)
        ->excludes(json)
        ->excludes(log);
    try {
        application.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return application.exit(error) == 0 ? 0 : k_bad_input;
    }
    if (!options.trace.empty()) {
        return written(check_trace(options));
    }
    if (script->count() == 0 && worst->count() == 0) {
        std::cerr << "ap_whatif: a script is missing\n";
        return k_bad_input;
    }
    return written(read_and_play(options));
}
