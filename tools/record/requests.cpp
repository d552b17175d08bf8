#include "tools/record/requests.h"

#include <optional>

namespace statectl::record {

namespace {

using status::Event_kind;
using status::State;

constexpr char const* k_timed_out = "timed out";

std::string status_text(Number status) {
    return status == 0 ? "succeeded" : status == 1 ? "general error" : status == 2 ? "invalid" : k_timed_out;
}

std::string group_name(Number group) {
    return group == 1 ? "DCM" : group == 2 ? "applications" : group == 3 ? "DEM" : "nobody";
}

trace::Group* open_group(trace::Life& cycle) {
    if (cycle.sequences.empty() || cycle.sequences.back().groups.empty() || cycle.sequences.back().groups.back().end) {
        return nullptr;
    }
    return &cycle.sequences.back().groups.back();
}

void group_asked(trace::Life& cycle, Recorded_event const& event) {
    close_group(cycle, event.at);
    if (!cycle.sequences.empty()) {
        cycle.sequences.back().groups.push_back({group_name(event.numbers[0]), seconds(event.at), {}, {}});
    }
}

void add_answer(trace::Life& cycle, Recorded_event const& event, std::string const& status,
                std::optional<double> after) {
    auto& account = cycle.clients[event.text];
    ++account.asked;
    ++(status == "succeeded" ? account.succeeded : status == k_timed_out ? account.late : account.failed);
    if (auto* const group = open_group(cycle)) {
        group->answers.push_back({event.text, status, after});
    }
}

// Of the answers that were not in time, its newest one has come now.
void answered_late(trace::Life& cycle, Recorded_event const& event) {
    for (auto sequence = cycle.sequences.rbegin(); sequence != cycle.sequences.rend(); ++sequence) {
        for (auto& group : sequence->groups) {
            for (auto& answer : group.answers) {
                if (answer.client == event.text && answer.status == k_timed_out && !answer.seconds) {
                    answer.seconds = seconds(event.numbers[1]);
                    return;
                }
            }
        }
    }
}

}  // namespace

void open_sequence(trace::Life& cycle, Number at, Number state) {
    cycle.sequences.push_back({is(state, State::preparing), seconds(at), {}, {}});
}

// One that was turned back has no end.
void close_sequence(trace::Life& cycle, Number at, Number state) {
    close_group(cycle, at);
    if (!cycle.sequences.empty() && !cycle.sequences.back().end &&
        (is(state, State::prepared_sd) || is(state, State::running))) {
        cycle.sequences.back().end = seconds(at);
    }
}

// Who was late in it has cost its time.
void close_group(trace::Life& cycle, Number at) {
    if (auto* const group = open_group(cycle)) {
        group->end = seconds(at);
        for (auto const& answer : group->answers) {
            if (answer.status == k_timed_out) {
                cycle.clients[answer.client].waited += *group->end - group->begin;
            }
        }
    }
}

std::vector<std::string> late_in(trace::Life const& cycle) {
    std::vector<std::string> names;
    if (!cycle.sequences.empty()) {
        for (auto const& group : cycle.sequences.back().groups) {
            for (auto const& answer : group.answers) {
                if (answer.status == k_timed_out) {
                    names.push_back(answer.client);
                }
            }
        }
    }
    return names;
}

void note_request(trace::Life& cycle, Recorded_event const& event) {
    switch (static_cast<Event_kind>(event.kind)) {
        case Event_kind::group_asked:
            return group_asked(cycle, event);
        case Event_kind::request_ended:
            return close_group(cycle, event.at);
        case Event_kind::client_answered:
            return add_answer(cycle, event, status_text(event.numbers[0]), seconds(event.numbers[1]));
        case Event_kind::client_timed_out:
            return add_answer(cycle, event, k_timed_out, {});
        case Event_kind::client_late:
            return answered_late(cycle, event);
        case Event_kind::client_vanished:
            ++cycle.clients[event.text].asked;
            ++cycle.clients[event.text].dropped;
            return;
        case Event_kind::client_out_of_turn:
            ++cycle.clients[event.text].out_of_turn;
            return;
        default:
            return;
    }
}

}  // namespace statectl::record
