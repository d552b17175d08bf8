#include "invariants.h"

#include "words.h"

#include <algorithm>
#include <utility>

namespace soak {

namespace {

using bench::rules::Row;
using bench::rules::State;

constexpr int k_warning = 3;

}  // namespace

std::int64_t Circumstances::stalled_in(std::int64_t begin, std::int64_t end) const {
    std::int64_t sum = 0;
    for (auto const& stall : stalls) {
        sum += std::max<std::int64_t>(0, std::min(end, stall.end) - std::max(begin, stall.begin));
    }
    return sum;
}

void Words::hear(Event const& event, Finding const& finding) {
    if (event.kind != Kind::state_word) {
        return;
    }
    auto const next = state_of_word(event.text);
    auto const& rows = bench::rules::rows();
    bool const may_follow =
        next && (state_ ? std::any_of(rows.begin(), rows.end(),
                                      [&](Row const& row) { return row.from == *state_ && row.to == *next; })
                        : *next == State::starting_up);
    if (!may_follow) {
        finding("the word " + event.text + " after " + (state_ ? word_of(*state_) : "nothing"));
    }
    state_ = next ? next : state_;
}

// A resume that turns a suspend back waits for the group that is asked before it begins.
void Budget::hear(Event const& event, Finding const& finding) {
    if (event.kind != Kind::state_word) {
        return;
    }
    auto const way = (2 * circumstances_.diagnosis_s + circumstances_.application_s) * k_ns_per_s;
    auto const turn = std::max(circumstances_.diagnosis_s, circumstances_.application_s) * k_ns_per_s;
    auto const taken = event.time - since_;
    auto const budget =
        (word_ == "resuming" ? way + turn : way) + k_slack + circumstances_.stalled_in(since_, event.time);
    if ((word_ == "preparing" || word_ == "resuming") && taken > budget) {
        finding(word_ + " took " + in_ms(taken) + ", longer than " + in_ms(budget));
    }
    word_ = event.text;
    since_ = event.time;
}

// Each cycle is logged and reported. Reports that fail end for good, so that nothing is said after a service manager's
// end.
void Beats::hear(Event const& event, Finding const& finding) {
    bool const is_beat = event.kind == Kind::watchdog;
    bool const is_cycle = is_of_daemon(event) && event.text == "Starting AP_StateManager run_cyclic_task";
    if (!is_beat && !is_cycle) {
        return;
    }
    auto const limit = circumstances_.period_ms * k_ns_per_ms + k_slack + circumstances_.stalled_in(last_, event.time);
    if (last_ != 0 && event.time - last_ > limit && circumstances_.is_supervised) {
        finding("no sign of life for " + in_ms(event.time - last_));
    }
    last_ = is_beat || last_ == 0 ? event.time : last_;
}

namespace {

/// Beginnings of warnings and errors, and what explains them; always where nothing stands.
struct Explained {
    char const* begin;
    std::vector<Verb> by;
};

std::vector<Explained> const& explained() {
    static auto const& all = *new std::vector<Explained>{
        {"Could not find ", {}},
        {"Failed to close event file descriptor!", {}},
        {"infrastructure exception", {Verb::withdraw, Verb::kill}},
        // The answer to a request that is not the newest any more is one as well.
        {"Client ", {Verb::report, Verb::behave, Verb::late}},
        {"client dropped: ", {Verb::behave, Verb::report}},
        {"connection dropped before it introduced itself", {Verb::behave, Verb::report}},
        {"A reply of ", {Verb::kill}},
        {"StateClient::", {Verb::stop, Verb::freeze, Verb::busy, Verb::kill}},
        {"AliveSupervision: caught ", {Verb::kill, Verb::stop}},
        {"Stopping AliveSupervision reporting to PHM!", {Verb::kill, Verb::stop}},
        {"Application state not reported: ", {Verb::kill}},
    };
    return all;
}

}  // namespace

void Complaints::hear(Event const& event, Finding const& finding) {
    if (!is_of_daemon(event) || event.level > k_warning) {
        return;
    }
    bool const is_explained = std::any_of(explained().begin(), explained().end(), [&](Explained const& entry) {
        return event.text.rfind(entry.begin, 0) == 0 &&
               (entry.by.empty() || std::any_of(entry.by.begin(), entry.by.end(), [this](Verb verb) {
                    return circumstances_.happened.count(verb) != 0;
                }));
    });
    if (!is_explained) {
        finding("nothing explains: " + event.text);
    }
}
}  // namespace soak
