#include "coverage.h"

namespace lives {

using bench::rules::Row;
using bench::rules::State;

namespace {

constexpr std::uint64_t k_rare = 10;

}  // namespace

void Coverage::decided(Row const& row, std::uint64_t situation) {
    ++rows_[&row];
    ++situations_[{row.from, situation}];
    if (row.to == State::stay) {
        return;
    }
    if (last_ != nullptr && last_->to == row.from) {
        ++pairs_[{last_, &row}];
    }
    last_ = &row;
}

std::string Coverage::text_of_situations() const {
    struct Found {
        unsigned possible{0};
        unsigned seen{0};
        unsigned once{0};
    };
    std::map<State, Found> of_state;
    std::string never;
    for (auto const& situation : possible().situations) {
        auto& found = of_state[situation.first];
        ++found.possible;
        auto const seen = situations_.find(situation);
        if (seen == situations_.end()) {
            never += "  " + text_of(situation) + '\n';
        } else {
            ++found.seen;
            found.once += seen->second == 1 ? 1U : 0U;
        }
    }
    std::string text =
        "situations (command, conditions, phase of the notification) that there can be, and were seen:\n";
    for (auto const& [state, found] : of_state) {
        text += std::string("  ") + bench::rules::name(state) + ": " + std::to_string(found.seen) + " of " +
                std::to_string(found.possible) + ", of which " + std::to_string(found.once) + " once\n";
    }
    return text + (never.empty() ? "" : "situations that were never seen:\n" + never);
}

std::string Coverage::impossible() const {
    std::string text;
    for (auto const& [situation, count] : situations_) {
        text += possible().situations.count(situation) == 0 ? "  " + text_of(situation) + '\n' : "";
    }
    for (auto const& [pair, count] : pairs_) {
        text += possible().pairs.count(pair) == 0 ? "  " + name(*pair.first) + " -> " + name(*pair.second) + '\n' : "";
    }
    return text;
}

std::string Coverage::text() const {
    std::string text = "rows, and how often each decided:\n";
    std::string missing;
    for (auto const& row : bench::rules::rows()) {
        auto const found = rows_.find(&row);
        auto const name = bench::rules::name(row);
        if (found == rows_.end()) {
            missing += " " + name + ";";
        } else {
            text += "  " + name + ": " + std::to_string(found->second) + '\n';
        }
    }
    std::size_t pairs = 0;
    std::string pairs_missing;
    std::string pairs_rare;
    for (auto const& first : bench::rules::rows()) {
        for (auto const& second : bench::rules::rows()) {
            if (possible().pairs.count({&first, &second}) == 0) {
                continue;
            }
            ++pairs;
            auto const name = "  " + bench::rules::name(first) + " -> " + bench::rules::name(second);
            auto const found = pairs_.find({&first, &second});
            if (found == pairs_.end()) {
                pairs_missing += name + '\n';
            } else if (found->second < k_rare) {
                pairs_rare += name + ": " + std::to_string(found->second) + '\n';
            }
        }
    }
    text += text_of_situations();
    text += "transitions after transitions: " + std::to_string(pairs_.size()) + " of " + std::to_string(pairs) + '\n';
    text += missing.empty() ? "" : "rows that never decided:" + missing + '\n';
    text += pairs_rare.empty() ? "" : "rarely one after the other:\n" + pairs_rare;
    text += pairs_missing.empty() ? "" : "never one after the other:\n" + pairs_missing;
    return text;
}

}  // namespace lives
