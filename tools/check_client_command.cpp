// One run of `check-client`: each chosen rule is judged after the other, on this thread, with the same directory for
// the socket. A verdict is a line as soon as it is there, or all are one JSON object; a rule that does not hold is the
// status.

#include "base/temporary_directory.h"
#include "tools/check/left_behind.h"
#include "tools/check/private_place.h"
#include "tools/check/rules.h"
#include "tools/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace statectl {

namespace {

using check::Outcome;
using check::Rule;
using check::Verdict;

struct Check_options {
    std::vector<std::string> words;
    std::vector<std::string> chosen_rules;
    std::int64_t patience_ms{check::Limits{}.patience.count()};
    std::int64_t quiet_ms{check::Limits{}.quiet.count()};
    bool by_variable_only{false};
    bool list_rules{false};
    bool as_json{false};
};

/// A directory for the socket, which every user may enter: the program may run as another one.
class Socket_directory {
 public:
    Socket_directory() { ::chmod(directory_.path().c_str(), 0755); }

    std::string path() const { return directory_.path(); }
    std::string socket() const { return directory_.file("ara_SM.socket"); }

 private:
    base::Temporary_directory const directory_{"/tmp"};
};

char const* mark(Outcome outcome) {
    switch (outcome) {
        case Outcome::holds:
            return "pass";
        case Outcome::broken:
            return "FAIL";
        case Outcome::not_checked:
            break;
    }
    return "-";
}

void print(Verdict const& verdict) {
    std::printf("%-4s  %-15s %s\n", mark(verdict.outcome), verdict.rule.c_str(), verdict.text.c_str());
    if (!verdict.why.empty()) {
        std::printf("      %s%s\n", verdict.outcome == Outcome::not_checked ? "not checked: " : "",
                    verdict.why.c_str());
    }
    std::fflush(stdout);
}

std::ptrdiff_t count(std::vector<Verdict> const& verdicts, Outcome outcome) {
    return std::count_if(verdicts.begin(), verdicts.end(),
                         [&](Verdict const& verdict) { return verdict.outcome == outcome; });
}

/// Under whose rule the longest answer came; null when there was none.
Verdict const* slowest(std::vector<Verdict> const& verdicts) {
    auto const found = std::max_element(verdicts.begin(), verdicts.end(), [](auto const& one, auto const& other) {
        return one.longest_answer < other.longest_answer;
    });
    return found == verdicts.end() || !found->longest_answer ? nullptr : &*found;
}

void print_sum(std::vector<Verdict> const& verdicts) {
    std::printf("%td of %zu rules hold, %td broken, %td not checked\n", count(verdicts, Outcome::holds),
                verdicts.size(), count(verdicts, Outcome::broken), count(verdicts, Outcome::not_checked));
    if (auto const* const slow = slowest(verdicts)) {
        std::printf("longest answer: %lld ms (%s)\n", static_cast<long long>(slow->longest_answer->count()),
                    slow->rule.c_str());
    }
}

void print_json(std::vector<Verdict> const& verdicts) {
    auto rules = nlohmann::json::array();
    for (auto const& verdict : verdicts) {
        auto const* const result = verdict.outcome == Outcome::holds    ? "pass"
                                   : verdict.outcome == Outcome::broken ? "fail"
                                                                        : "not checked";
        rules.push_back({{"rule", verdict.rule}, {"text", verdict.text}, {"result", result}, {"why", verdict.why}});
    }
    auto const* const slow = slowest(verdicts);
    nlohmann::json const result{
        {"rules", rules},
        {"passed", count(verdicts, Outcome::holds)},
        {"failed", count(verdicts, Outcome::broken)},
        {"not_checked", count(verdicts, Outcome::not_checked)},
        {"longest_answer_ms", slow == nullptr ? nlohmann::json() : nlohmann::json(slow->longest_answer->count())}};
    std::puts(result.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

bool is_chosen(Check_options const& options, Rule const& rule) {
    auto const& chosen = options.chosen_rules;
    return chosen.empty() || std::find(chosen.begin(), chosen.end(), rule.name) != chosen.end();
}

check::Start start_in(Socket_directory const& directory, Check_options const& options) {
    check::Start start{options.words, directory.socket(), !options.by_variable_only};
    if (start.in_private_place) {
        auto const why = check::why_no_private_place(directory.path());
        start.in_private_place = why.empty();
        if (!why.empty()) {
            std::fprintf(stderr, "The socket can be found by AP_STATEMANAGER_SOCKET only: %s\n", why.c_str());
        }
    }
    return start;
}

int list_rules() {
    for (auto const& rule : check::rules()) {
        std::printf("%-15s %s\n", rule.name.c_str(), rule.text.c_str());
    }
    return k_success;
}

int check_client(Check_options const& options) {
    Socket_directory const directory;
    check::remove_at_signals(directory.path(), directory.socket());
    auto const start = start_in(directory, options);
    check::Limits const limits{check::Milliseconds(options.patience_ms), check::Milliseconds(options.quiet_ms)};
    std::vector<Verdict> verdicts;
    for (auto const& rule : check::rules()) {
        if (is_chosen(options, rule)) {
            verdicts.push_back(judge(rule, start, limits));
            if (!options.as_json) {
                print(verdicts.back());
            }
        }
    }
    if (options.as_json) {
        print_json(verdicts);
    } else {
        print_sum(verdicts);
    }
    return count(verdicts, Outcome::holds) == static_cast<std::ptrdiff_t>(verdicts.size()) ? k_success : k_failure;
}

std::vector<std::string> rule_names() {
    std::vector<std::string> names;
    for (auto const& rule : check::rules()) {
        names.push_back(rule.name);
    }
    return names;
}

}  // namespace

void add_check_client_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Check_options>();
    auto* const command = program.add_subcommand("check-client", "Check whether a program is a good client");
    command->add_option("--rule", options->chosen_rules, "Look at this rule only; may be given several times")
        ->allow_extra_args(false)
        ->check(CLI::IsMember(rule_names()));
    command->add_flag("--list", options->list_rules, "List the rules");
    command->add_option("--patience", options->patience_ms, "Milliseconds that the program has for what it must do")
        ->capture_default_str()
        ->check(CLI::Range(1, 3'600'000));
    command->add_option("--quiet", options->quiet_ms, "Milliseconds in which it must not do what it must not")
        ->capture_default_str()
        ->check(CLI::Range(1, 600'000));
    command->add_flag("--by-variable", options->by_variable_only,
                      "Tell the socket by AP_STATEMANAGER_SOCKET only; no private view of the file system");
    command->add_flag("--json", options->as_json, "One JSON object");
    command->add_option("COMMAND", options->words, "The program and its arguments, after --");
    command->callback([options, &chosen] {
        if (!options->list_rules && options->words.empty()) {
            throw CLI::RequiredError("COMMAND");
        }
        chosen = [options] { return options->list_rules ? list_rules() : check_client(*options); };
    });
}

}  // namespace statectl
