// history, last, blame and offenders: what the recorder has written, told once. Each reads all files, makes power
// cycles of them, and prints.

#include "tools/commands.h"
#include "tools/json_text.h"
#include "tools/page/words.h"
#include "tools/record/power_cycles.h"
#include "tools/time_text.h"
#include "tools/trace/reports.h"
#include "tools/trace/summary.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>

namespace statectl {

namespace {

using nlohmann::json;
using record::Power_cycle;
using trace::duration_text;

constexpr std::size_t k_offenders_of_a_cycle = 3;
constexpr std::size_t k_most_offenders = 20;
constexpr std::size_t k_most_cycles = 1'000'000'000;

struct History_options {
    std::string directory{record::k_directory};
    std::string page{status::k_page_path};
    std::string html;
    std::size_t count{20};
    bool as_json{false};
};

/// What the files tell, the oldest cycle first.
struct History {
    std::vector<Power_cycle> cycles;
    std::size_t damaged;
    std::vector<std::string> troubles;  ///< what is not told for a reason
};

// Of the daemon that runs now, if one does and the page may be read.
record::Present present(std::string const& path) {
    record::Present now;
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::getline(file, now.boot);
    try {
        auto const page = Page_view(path).snapshot();
        if (page.is_alive) {
            now.running = {shown(text_of(page.life.boot)), page.life.number, page.life.pid, page.life.started};
            now.now = page.now;
        }
    } catch (No_page const&) {
        return now;
    }
    return now;
}

void complain(History const& history) {
    for (auto const& trouble : history.troubles) {
        std::fprintf(stderr, "%s\n", trouble.c_str());
    }
}

History history_of(History_options const& options) {
    auto const records = record::read_records(options.directory);
    History history{record::power_cycles(records, present(options.page)), records.damaged, records.unreadable};
    if (records.damaged != 0) {
        history.troubles.push_back(std::to_string(records.damaged) + " of " + std::to_string(records.lines) +
                                   " lines of the records are damaged and were left out");
    }
    if (history.cycles.empty()) {
        complain(history);
        throw std::runtime_error(options.directory + " holds no record of a power cycle");
    }
    return history;
}

std::string begin_of(Power_cycle const& cycle) {
    return trace::begin_text(cycle.told);
}

double length_of(Power_cycle const& cycle) {
    return cycle.told.end - cycle.told.begin;
}

trace::Story story_of(std::vector<Power_cycle> const& cycles) {
    trace::Story story;
    for (auto const& cycle : cycles) {
        story.lives.push_back(cycle.told);
        story.messages += cycle.told.messages;
    }
    return story;
}

// How an end was found out, for those that no farewell tells.
std::string evidence(Power_cycle const& cycle) {
    if (cycle.ending == record::ending::killed || cycle.ending == record::ending::watchdog) {
        return " (no farewell; gone " + duration_text(cycle.silent) + " after its last sign of life)";
    }
    if (cycle.ending == record::ending::went_down) {
        return " (no farewell; the machine was started anew; up to the last second may be missing)";
    }
    if (cycle.ending == record::ending::no_farewell) {
        return cycle.is_recorded ? " (nobody saw how it went)" : " (the recorder had been stopped before)";
    }
    return "";
}

constexpr char const* k_not_yet = "not yet";

// Whom a suspend that has not ended waits for, as the page has it: the recorder knows only answers.
void add_unanswered(trace::Sequence& sequence, std::string const& path) {
    if (sequence.end || sequence.groups.empty() || sequence.groups.back().end) {
        return;
    }
    try {
        for (auto const& client : Page_view(path).snapshot().clients) {
            if (client.answer == static_cast<Number>(status::Answer::open)) {
                sequence.groups.back().answers.push_back({shown(text_of(client.name)), k_not_yet, {}});
            }
        }
    } catch (No_page const&) {
        return;
    }
}

std::string answer_text(trace::Answer const& answer) {
    if (answer.status == k_not_yet) {
        return ": has not answered yet";
    }
    if (answer.status == "timed out") {
        return answer.seconds ? ": timed out, and answered then" : ": timed out, and has not answered since";
    }
    return answer.status == "succeeded" ? "" : ": " + answer.status;
}

// As explain tells a life, and what is known of it besides.
json cycle_json(Power_cycle const& cycle) {
    auto const report = trace::json_report(story_of({cycle}));
    auto object = report.at("lives").at(0);
    object.update({{"end_word", cycle.ending},
                   {"state", cycle.state},
                   {"seconds", length_of(cycle)},
                   {"boot", cycle.boot},
                   {"life", cycle.life},
                   {"missed", cycle.missed},
                   {"offenders", report.at("offenders")}});
    return object;
}

std::string offenders_text(Power_cycle const& cycle) {
    auto const summary = summary_of(story_of({cycle}));
    std::string text;
    for (std::size_t i = 0; i < std::min(summary.offenders.size(), k_offenders_of_a_cycle); ++i) {
        auto const& offender = summary.offenders[i];
        text += (i == 0 ? "" : "; ") + duration_text(offender.seconds) + ' ' + offender.text;
    }
    return text.empty() ? "-" : text;
}

void print_table(std::vector<Power_cycle> const& cycles) {
    std::printf("%-28s  %11s  %-27s  %s\n", "BEGIN", "LASTED", "END", "WHAT COST TIME");
    for (auto const& cycle : cycles) {
        std::printf("%-28s  %11s  %-27s  %s\n", begin_of(cycle).c_str(), duration_text(length_of(cycle)).c_str(),
                    cycle.told.ending.c_str(), offenders_text(cycle).c_str());
    }
}

void write_page(std::vector<Power_cycle> const& cycles, std::string const& path) {
    std::ofstream file(path, std::ios::binary);
    constexpr trace::Parts k_parts{"power cycle", "power cycles", "recorded event", "recorded events"};
    file << trace::html_report(story_of(cycles), "Power cycles", k_parts) << std::flush;
    if (!file) {
        throw std::runtime_error(path + " can't be written");
    }
}

int history(History_options const& options) {
    auto history = history_of(options);
    auto& cycles = history.cycles;
    cycles.erase(cycles.begin(), cycles.end() - static_cast<std::ptrdiff_t>(std::min(cycles.size(), options.count)));
    if (!options.html.empty()) {
        write_page(cycles, options.html);
    }
    if (options.as_json) {
        auto list = json::array();
        for (auto const& cycle : cycles) {
            list.push_back(cycle_json(cycle));
        }
        std::puts(json_text({{"cycles", list}, {"damaged_lines", history.damaged}}, 2).c_str());
    } else if (options.html.empty()) {
        print_table(cycles);
    }
    complain(history);
    return k_success;
}

// The newest one that has ended.
int last(History_options const& options) {
    auto const history = history_of(options);
    auto const found = std::find_if(history.cycles.rbegin(), history.cycles.rend(),
                                    [](Power_cycle const& cycle) { return cycle.ending != record::ending::running; });
    if (found == history.cycles.rend()) {
        throw std::runtime_error("the machine's first recorded power cycle has not ended");
    }
    if (options.as_json) {
        std::puts(json_text(cycle_json(*found), 2).c_str());
    } else {
        std::printf("%s%s\n%s, %s\n%s", found->told.ending.c_str(), evidence(*found).c_str(), begin_of(*found).c_str(),
                    duration_text(length_of(*found)).c_str(), trace::text_of(found->told).c_str());
        if (found->missed != 0) {
            std::printf("%zu events are not recorded\n", static_cast<std::size_t>(found->missed));
        }
    }
    complain(history);
    return k_success;
}

void print_blame(trace::Sequence const& sequence, Power_cycle const& cycle) {
    std::puts(sentence_of(sequence, cycle.told).c_str());
    for (auto const& group : sequence.groups) {
        std::printf("%11s  %s\n", duration_text(group.end.value_or(cycle.told.end) - group.begin).c_str(),
                    group.name.c_str());
        auto answers = group.answers;
        std::stable_sort(answers.begin(), answers.end(), [](trace::Answer const& left, trace::Answer const& right) {
            return left.seconds.value_or(1e9) > right.seconds.value_or(1e9);
        });
        for (auto const& answer : answers) {
            std::printf("%15s  %s%s\n", answer.seconds ? duration_text(*answer.seconds).c_str() : "-",
                        quoted(answer.client).c_str(), answer_text(answer).c_str());
        }
    }
}

// Where the newest suspend's time went.
int blame(History_options const& options) {
    auto history = history_of(options);
    for (auto cycle = history.cycles.rbegin(); cycle != history.cycles.rend(); ++cycle) {
        auto& sequences = cycle->told.sequences;
        auto const found = std::find_if(sequences.rbegin(), sequences.rend(),
                                        [](trace::Sequence const& sequence) { return sequence.is_standby; });
        if (found != sequences.rend()) {
            if (cycle->ending == record::ending::running && found == sequences.rbegin()) {
                add_unanswered(*found, options.page);
            }
            if (options.as_json) {
                auto const place = static_cast<std::size_t>(sequences.rend() - found) - 1;
                std::puts(json_text(cycle_json(*cycle).at("sequences").at(place), 2).c_str());
            } else {
                print_blame(*found, *cycle);
            }
            complain(history);
            return k_success;
        }
    }
    throw std::runtime_error("no suspend is recorded");
}

// What cost the machine time, over all records.
int offenders(History_options const& options) {
    auto const history = history_of(options);
    auto const story = story_of(history.cycles);
    auto const summary = summary_of(story);
    if (options.as_json) {
        auto const report = trace::json_report(story);
        std::puts(json_text({{"cycles", history.cycles.size()},
                             {"offenders", report.at("offenders")},
                             {"clients", report.at("clients")}},
                            2)
                      .c_str());
    } else {
        auto const count = history.cycles.size();
        std::printf("In %zu power cycle%s since %s:\n", count, count == 1 ? "" : "s",
                    begin_of(history.cycles.front()).c_str());
        for (std::size_t i = 0; i < std::min(summary.offenders.size(), k_most_offenders); ++i) {
            std::printf("%12s  %s\n", duration_text(summary.offenders[i].seconds).c_str(),
                        summary.offenders[i].text.c_str());
        }
        if (summary.offenders.empty()) {
            std::puts("nobody was late, and nobody kept the machine awake");
        }
    }
    complain(history);
    return k_success;
}

std::shared_ptr<History_options> add(CLI::App& program, Action& chosen, char const* name, char const* description,
                                     int (*tell)(History_options const&)) {
    auto options = std::make_shared<History_options>();
    auto* const command = program.add_subcommand(name, description);
    command->add_option("--directory", options->directory, "Where the records lie")->capture_default_str();
    command->add_option("--page", options->page, "The status page's file, for what runs now")->capture_default_str();
    command->add_flag("--json", options->as_json, "Print one JSON object");
    command->callback([options, tell, &chosen] { chosen = [options, tell] { return tell(*options); }; });
    return options;
}

}  // namespace

void add_history_command(CLI::App& program, Action& chosen) {
    auto const options =
        add(program, chosen, "history", "List the machine's power cycles, and how each ended", history);
    auto* const command = program.get_subcommand("history");
    command->add_option("-n,--count", options->count, "How many of the newest")
        ->check(CLI::Range(std::size_t{1}, k_most_cycles))
        ->capture_default_str();
    command->add_option("--html", options->html, "Write a page for a browser into a file");
}

void add_last_command(CLI::App& program, Action& chosen) {
    add(program, chosen, "last", "Tell how the last power cycle ended, and what was then", last);
}

void add_blame_command(CLI::App& program, Action& chosen) {
    add(program, chosen, "blame", "Tell where the time of the last suspend went", blame);
}

void add_offenders_command(CLI::App& program, Action& chosen) {
    add(program, chosen, "offenders", "List what cost the machine time, over all records", offenders);
}

}  // namespace statectl
