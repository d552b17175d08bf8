#include "tools/trace/summary.h"

#include "tools/time_text.h"
#include "tools/trace/cause.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace statectl::trace {

namespace {

char const* way_of(Sequence const& sequence) {
    return sequence.is_standby ? "suspend" : "resume";
}

std::vector<std::string> clients_with(Group const& group, std::string const& status) {
    std::vector<std::string> names;
    for (auto const& answer : group.answers) {
        if (answer.status == status) {
            names.push_back(answer.client);
        }
    }
    return names;
}

// Everything but success: "radio timed out, tuner general error".
std::string remarks_on(Group const& group) {
    std::string text;
    for (auto const* status : {"timed out", "general error", "invalid"}) {
        auto const names = clients_with(group, status);
        if (!names.empty()) {
            text += (text.empty() ? "" : "; ") + enumeration(names) + ' ' + status;
        }
    }
    return text.empty() ? "" : " (" + text + ')';
}

double overlap(double begin, double end, Stay const& stay, double life_end) {
    return std::max(0.0, std::min(end, stay.end.value_or(life_end)) - std::max(begin, stay.begin));
}

void add_groups(Life const& life, Summary& summary) {
    for (auto const& sequence : life.sequences) {
        for (auto const& group : sequence.groups) {
            auto& total = summary.groups[{way_of(sequence), group.name}];
            auto const seconds = group.end.value_or(life.end) - group.begin;
            ++total.times;
            total.late += clients_with(group, "timed out").empty() ? 0 : 1;
            total.total += seconds;
            total.longest = std::max(total.longest, seconds);
        }
    }
}

void add_clients(Life const& life, Summary& summary) {
    for (auto const& [name, account] : life.clients) {
        auto& total = summary.clients[name];
        total.asked += account.asked;
        total.succeeded += account.succeeded;
        total.failed += account.failed;
        total.late += account.late;
        total.out_of_turn += account.out_of_turn;
        total.dropped += account.dropped;
        total.waited += account.waited;
    }
}

void add_holds(Life const& life, Summary& summary) {
    for (auto const& hold : life.holds) {
        auto& total = summary.holds[{hold.what, hold.who}];
        auto const end = hold.end.value_or(life.end);
        ++total.times;
        total.total += end - hold.begin;
        for (auto const& stay : life.stays) {
            if (stay.state == "NM Controlled" || stay.state == "Post Run") {
                total.awake += overlap(hold.begin, end, stay, life.end);
            }
        }
    }
}

void find_offenders(Summary& summary) {
    constexpr double k_worth_telling = 0.05;
    for (auto const& [name, account] : summary.clients) {
        if (account.waited >= k_worth_telling) {
            summary.offenders.push_back({account.waited, name_text(name) + " did not answer in time, " +
                                                             std::to_string(account.late) + " of " +
                                                             std::to_string(account.asked) + " times"});
        }
    }
    for (auto const& [key, total] : summary.holds) {
        if (total.awake >= k_worth_telling) {
            summary.offenders.push_back(
                {total.awake, name_text(key.second) + " kept the machine awake (" + key.first + ")"});
        }
    }
    std::stable_sort(summary.offenders.begin(), summary.offenders.end(),
                     [](Offender const& left, Offender const& right) { return left.seconds > right.seconds; });
}

}  // namespace

std::vector<Cycle> cycles_of(Life const& life) {
    std::vector<Cycle> cycles;
    std::size_t first = 0;
    for (std::size_t i = 1; i <= life.stays.size(); ++i) {
        bool const is_over =
            i == life.stays.size() || (life.stays[i].state == "Resuming" && life.stays[i - 1].state == "PreparedSD");
        if (is_over) {
            cycles.push_back({&life, cycles.size() + 1, first, i, first == 0 ? life.begin : life.stays[first].begin,
                              life.stays[i - 1].end.value_or(life.end)});
            first = i;
        }
    }
    return cycles;
}

Summary summary_of(Story const& story) {
    Summary summary;
    for (auto const& life : story.lives) {
        add_groups(life, summary);
        add_clients(life, summary);
        add_holds(life, summary);
    }
    find_offenders(summary);
    return summary;
}

std::string sentence_of(Sequence const& sequence, Life const& life) {
    auto text = std::string("the ") + way_of(sequence);
    if (sequence.end) {
        text += " took " + duration_text(*sequence.end - sequence.begin);
    } else {
        text += " was not finished";
    }
    double between = sequence.end.value_or(life.end) - sequence.begin;
    char const* separator = ": ";
    for (auto const& group : sequence.groups) {
        auto const seconds = group.end.value_or(life.end) - group.begin;
        between -= seconds;
        text += separator + group.name + ' ' + duration_text(seconds) + remarks_on(group);
        separator = ", ";
    }
    constexpr double k_worth_telling = 0.05;
    return sequence.end && between > k_worth_telling ? text + ", between and after them " + duration_text(between)
                                                     : text;
}

std::string duration_text(double seconds) {
    constexpr double k_minute = 60;
    constexpr double k_hour = 3600;
    std::array<char, 48> text{};
    if (seconds < k_minute) {
        std::snprintf(text.data(), text.size(), seconds < 1 ? "%.3f s" : "%.1f s", seconds);
    } else if (seconds < k_hour) {
        std::snprintf(text.data(), text.size(), "%.0f min %.0f s", std::floor(seconds / k_minute),
                      std::fmod(seconds, k_minute));
    } else {
        std::snprintf(text.data(), text.size(), "%.0f h %.0f min", std::floor(seconds / k_hour),
                      std::floor(std::fmod(seconds, k_hour) / k_minute));
    }
    return text.data();
}

std::string begin_text(Life const& life) {
    if (life.stored_us) {
        return time_text(std::chrono::system_clock::time_point(std::chrono::microseconds(*life.stored_us)));
    }
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.3f s after the machine's start", life.begin);
    return text.data();
}

}  // namespace statectl::trace
