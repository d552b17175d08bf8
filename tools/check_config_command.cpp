// `check_configuration` makes a question of the options and prints the answer, as text or as JSON; the checks stand in
// `check_config`.

#include "tools/check_config/check.h"
#include "tools/check_config/words.h"
#include "tools/commands.h"
#include "tools/json_text.h"
#include "tools/page/words.h"
#include "tools/seconds_option.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include <unistd.h>

namespace statectl {

namespace {

using check_config::seconds_text;
using check_config::Times;

constexpr int k_taken_with_warnings = 3;

struct Check_config_options {
    std::string file;
    std::optional<std::string> host;
    std::optional<std::string> unit;
    std::optional<double> limit_seconds;
    bool as_json{false};
    bool prints_schema{false};
};

/// One figure: its name in JSON, what it is for people.
struct Figure {
    char const* name;
    char const* text;
    double Times::*seconds;
};

constexpr Figure k_figures[] = {
    {"longest_suspend", "longest suspend, when nobody answers", &Times::suspend},
    {"longest_resume", "longest resume, when nobody answers", &Times::resume},
    {"knock_out", "longest wait of Post Run for applications", &Times::knock_out},
    {"cycle", "longest cycle, when no neighbour answers", &Times::cycle},
    {"watchdog", "WatchdogSec of the unit has to be more than this and what a control file takes", &Times::watchdog},
    {"stop", "TimeoutStopSec of the unit has to be more than this and what a control file takes", &Times::stop},
};

int status_of(check_config::Answer const& answer) {
    if (!answer.verdict.is_taken) {
        return k_failure;
    }
    return answer.findings.empty() ? k_success : k_taken_with_warnings;
}

void print_json(Check_config_options const& options, check_config::Answer const& answer) {
    auto findings = nlohmann::json::array();
    for (auto const& finding : answer.findings) {
        nlohmann::json one{{"text", finding.text}};
        if (finding.line != 0) {
            one["line"] = finding.line;
        }
        findings.push_back(one);
    }
    nlohmann::json object{{"file", options.file}, {"taken", answer.verdict.is_taken}, {"findings", findings}};
    if (!answer.verdict.is_taken) {
        object["reason"] = answer.verdict.reason;
    }
    if (answer.read_file) {
        object["read_file"] = *answer.read_file;
    }
    for (auto const& figure : k_figures) {
        if (answer.times) {
            object["seconds"][figure.name] = *answer.times.*figure.seconds;
        }
    }
    std::puts(json_text(object, 2).c_str());
}

std::string coloured(std::string const& text, char const* colour) {
    return ::isatty(STDOUT_FILENO) != 0 ? std::string("\033[") + colour + 'm' + text + "\033[0m" : text;
}

void print_text(Check_config_options const& options, check_config::Answer const& answer) {
    constexpr char const* k_red = "1;31";
    constexpr char const* k_yellow = "1;33";
    constexpr char const* k_green = "1;32";
    auto const& verdict = answer.verdict;
    auto const word = !verdict.is_taken         ? coloured("refused", k_red)
                      : answer.findings.empty() ? coloured("taken", k_green)
                                                : coloured("taken", k_yellow) + ", and worth a look";
    std::printf("%s: %s\n", options.file.c_str(), word.c_str());
    if (!verdict.is_taken) {
        std::printf("  the daemon says  %s\n", shown(verdict.reason).c_str());
    }
    for (auto const& finding : answer.findings) {
        auto const place = finding.line == 0 ? std::string() : "line " + std::to_string(finding.line);
        std::printf("  %-9s  %s\n", place.c_str(), shown(finding.text).c_str());
    }
    for (auto const& figure : k_figures) {
        if (answer.times) {
            std::printf("  %8s s  %s\n", seconds_text(*answer.times.*figure.seconds).c_str(), figure.text);
        }
    }
    if (answer.read_file) {
        std::printf("  %s is what a machine named \"%s\" reads\n", answer.read_file->c_str(), options.host->c_str());
    }
}

int check_configuration(Check_config_options const& options) {
    if (options.prints_schema) {
        std::puts(check_config::schema().dump(2).c_str());
        return k_success;
    }
    if (options.file.empty()) {
        std::fputs("FILE is required\nRun with --help for more information.\n", stderr);
        return k_usage;
    }
    check_config::Question question{options.file, options.host, options.limit_seconds};
    if (options.unit) {
        question.unit = check_config::unit_named(*options.unit);
    }
    auto const answer = check_config::check(question);
    options.as_json ? print_json(options, answer) : print_text(options, answer);
    return status_of(answer);
}

}  // namespace

void add_check_config_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Check_config_options>();
    auto* const command = program.add_subcommand("check-config", "Check a configuration of the state manager");
    command->add_option("FILE", options->file, "The configuration");
    command->add_option("--host", options->host, "Name of the machine that is to read it");
    command->add_option("--unit", options->unit,
                        "Unit of the daemon: its file, or its name on this machine; the shipped one otherwise");
    command->add_option("--limit", options->limit_seconds, "Seconds that a suspend may take")
        ->check(seconds_from(0.001));
    command->add_flag("--json", options->as_json, "Print one JSON object");
    command->add_flag("--schema", options->prints_schema, "Print the JSON schema of a configuration instead");
    command->callback([options, &chosen] { chosen = [options] { return check_configuration(*options); }; });
}

}  // namespace statectl
