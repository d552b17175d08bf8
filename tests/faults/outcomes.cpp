#include "outcomes.h"

#include "calls.h"

#include <cstdio>

namespace faults {

namespace {

std::string text_of(std::map<std::string, unsigned> const& counts) {
    std::string text;
    for (auto const& [error, count] : counts) {
        text += error + ' ' + std::to_string(count) + ' ';
    }
    return text;
}

// "EINTR", "short", "SIGTERM".
std::string error_of(Fault const& fault) {
    auto const text = faults::text_of(fault);
    return text.substr(text.rfind(' ') + 1);
}

}  // namespace

void Outcomes::note(Trial const& trial, Verdict const& verdict, std::string const& line, bool shows_all) {
    auto const outcome = static_cast<std::size_t>(verdict.outcome);
    ++totals_[outcome];
    bool const is_pair = trial.faults.size() > 1;
    auto const& fault = trial.faults.front();
    ++table_[is_pair ? "two of them" : call_of(fault.call)->name][outcome][is_pair ? "all" : error_of(fault)];
    if (verdict.outcome == Outcome::wrong) {
        auto text = line + "\n    " + verdict.reason;
        for (auto const& told : verdict.told) {
            text += "\n    logged: " + told;
        }
        std::printf("WRONG %s\n", text.c_str());
        wrong_.push_back(text);
    } else if (shows_all) {
        std::printf("%s: %s\n", name_of(verdict.outcome), line.c_str());
        for (auto const& told : verdict.told) {
            std::printf("    logged: %s\n", told.c_str());
        }
    }
    std::fflush(stdout);
}

void Outcomes::print_table() const {
    std::printf("\n| Call |");
    for (std::size_t outcome = 0; outcome < k_outcomes; ++outcome) {
        std::printf(" %s |", name_of(static_cast<Outcome>(outcome)));
    }
    std::printf("\n|---|---|---|---|---|---|---|---|\n");
    for (auto const& [call, outcomes] : table_) {
        std::printf("| `%s` |", call.c_str());
        for (std::size_t outcome = 0; outcome < k_outcomes; ++outcome) {
            auto const found = outcomes.find(outcome);
            std::printf(" %s|", found == outcomes.end() ? "" : text_of(found->second).c_str());
        }
        std::printf("\n");
    }
    std::printf("| all |");
    for (auto const total : totals_) {
        std::printf(" %u |", total);
    }
    std::printf("\n");
}

}  // namespace faults
