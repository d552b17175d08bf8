// `power_cycles` hands the events of one life after the other to a teller, which opens and closes cycles, states,
// sequences, groups and holds as they come, and tells the end of the last one by what stands behind it.

#include "tools/record/power_cycles.h"

#include "tools/page/words.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace statectl::record {

namespace {

using status::Event_kind;
using status::State;

constexpr double k_nanoseconds = 1e9;
constexpr std::size_t k_most_remarks = 1'000;  // of a cycle
constexpr char const* k_timed_out = "timed out";

double seconds(Number time) {
    return static_cast<double>(time) / k_nanoseconds;
}

bool is(Number value, State state) {
    return value == static_cast<Number>(state);
}

std::string status_text(Number status) {
    return status == 0 ? "succeeded" : status == 1 ? "general error" : status == 2 ? "invalid" : k_timed_out;
}

std::string group_name(Number group) {
    return group == 1 ? "DCM" : group == 2 ? "applications" : group == 3 ? "DEM" : "nobody";
}

class Teller {
 public:
    explicit Teller(Recorded_life const& life) : recorded_(life) {
        begin_cycle(life.from, life.state, is(life.state, State::starting_up) ? "start" : "");
        cycle_.told.has_start = life.from == life.identity.started;
        for (auto const& hold : life.held) {
            hold_taken(hold.hold, hold.name, life.from);
        }
    }

    void take(Recorded_event const& event) {
        if (event.at < recorded_.from) {
            return;
        }
        last_at_ = event.at;
        last_real_ = event.real;
        ++cycle_.told.messages;
        switch (static_cast<Event_kind>(event.kind)) {
            case Event_kind::transition:
                transition(event);
                break;
            case Event_kind::held:
                hold_taken(event.numbers[0], event.text, event.at);
                break;
            case Event_kind::released:
                hold_released(event.numbers[0], event.text, event.at);
                break;
            case Event_kind::group_asked:
                group_asked(event);
                break;
            case Event_kind::request_ended:
                close_group(event.at);
                break;
            default:
                take_client(event);
                take_trouble(event);
        }
    }

    std::vector<Power_cycle> end(std::string const& how) {
        auto const at = std::max({recorded_.end ? recorded_.end->at : 0, recorded_.last_at, last_at_});
        if (recorded_.last_at >= last_at_) {
            last_at_ = recorded_.last_at;
            last_real_ = recorded_.last_real;
        }
        cycle_.silent = recorded_.end ? seconds(recorded_.end->silent) : 0;
        cycle_.missed = recorded_.missed;
        cycle_.is_recorded = !recorded_.is_left;
        end_cycle(at, how, true);
        return std::move(cycles_);
    }

 private:
    trace::Life& told() { return cycle_.told; }

    void begin_cycle(Number at, Number state, std::string const& cause) {
        cycle_ = {};
        cycle_.life = recorded_.identity.number;
        cycle_.boot = recorded_.identity.boot;
        told().process = static_cast<std::uint32_t>(recorded_.identity.pid);
        told().begin = seconds(at);
        begin_ = at;
        last_at_ = at;
        last_real_ =
            recorded_.last_real - std::min(recorded_.last_real, recorded_.last_at - std::min(recorded_.last_at, at));
        told().stays.push_back({state_word(state), seconds(at), {}, cause});
    }

    // The clock may have been set within the cycle, and is taken to be right later.
    void end_cycle(Number at, std::string const& how, bool is_last) {
        close_group(at);
        auto& last = told().stays.back();
        last.end = is_last ? std::nullopt : std::optional<double>(seconds(at));
        cycle_.state = last.state;
        cycle_.ending = how;
        told().end = seconds(at);
        auto const age = last_at_ - std::min(last_at_, begin_);
        told().stored_us = static_cast<std::int64_t>((last_real_ - std::min(last_real_, age)) / 1'000);
        told().ending = ending_text(cycle_);
        told().is_orderly = is_orderly(how);
        cycles_.push_back(std::move(cycle_));
    }

    void transition(Recorded_event const& event) {
        auto const [from, to, row] = event.numbers;
        auto const cause = cause_text(from, row);
        bool const is_resume = is(to, State::resuming) && (is(from, State::prepared_sd) || is(from, State::preparing));
        close_sequence(event.at, to);
        if (is_resume) {
            auto const held = std::exchange(held_, {});
            end_cycle(event.at, is(from, State::preparing) ? ending::resumed : ending::suspended, false);
            begin_cycle(event.at, to, cause);
            last_real_ = event.real;
            for (auto const& [hold, place] : held) {
                hold_taken(hold.first, hold.second, event.at);
            }
        } else {
            told().stays.back().end = seconds(event.at);
            told().stays.push_back({state_word(to), seconds(event.at), {}, cause});
        }
        if (is(to, State::preparing) || is(to, State::resuming)) {
            told().sequences.push_back({is(to, State::preparing), seconds(event.at), {}, {}});
        }
    }

    // One that was turned back has no end.
    void close_sequence(Number at, Number to) {
        close_group(at);
        if (!told().sequences.empty() && !told().sequences.back().end &&
            (is(to, State::prepared_sd) || is(to, State::running))) {
            told().sequences.back().end = seconds(at);
        }
    }

    void group_asked(Recorded_event const& event) {
        close_group(event.at);
        if (!told().sequences.empty()) {
            told().sequences.back().groups.push_back({group_name(event.numbers[0]), seconds(event.at), {}, {}});
        }
    }

    trace::Group* open_group() {
        if (told().sequences.empty() || told().sequences.back().groups.empty() ||
            told().sequences.back().groups.back().end) {
            return nullptr;
        }
        return &told().sequences.back().groups.back();
    }

    // Who was late in it has cost its time.
    void close_group(Number at) {
        if (auto* const group = open_group()) {
            group->end = seconds(at);
            for (auto const& answer : group->answers) {
                if (answer.status == k_timed_out) {
                    told().clients[answer.client].waited += *group->end - group->begin;
                }
            }
        }
    }

    void add_answer(Recorded_event const& event, std::string const& status, std::optional<double> after) {
        auto& account = told().clients[event.text];
        ++account.asked;
        ++(status == "succeeded" ? account.succeeded : status == k_timed_out ? account.late : account.failed);
        if (auto* const group = open_group()) {
            group->answers.push_back({event.text, status, after});
        }
    }

    void take_client(Recorded_event const& event) {
        switch (static_cast<Event_kind>(event.kind)) {
            case Event_kind::client_answered:
                add_answer(event, status_text(event.numbers[0]), seconds(event.numbers[1]));
                break;
            case Event_kind::client_timed_out:
                add_answer(event, k_timed_out, {});
                break;
            case Event_kind::client_late:
                answered_late(event);
                break;
            case Event_kind::client_vanished:
                ++told().clients[event.text].asked;
                ++told().clients[event.text].dropped;
                remark(told().troubles, event, quoted(event.text) + " was asked, and left without an answer");
                break;
            case Event_kind::client_out_of_turn:
                ++told().clients[event.text].out_of_turn;
                break;
            default:
                break;
        }
    }

    // Of the answers that were not in time, its newest one has come now.
    void answered_late(Recorded_event const& event) {
        for (auto sequence = told().sequences.rbegin(); sequence != told().sequences.rend(); ++sequence) {
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

    void take_trouble(Recorded_event const& event) {
        auto const key = "command \"" + command_word(event.numbers[0]) + '"';
        switch (static_cast<Event_kind>(event.kind)) {
            case Event_kind::key_dropped:
                return remark(told().dropped, event, key + " was dropped: it is the one taken last");
            case Event_kind::key_swallowed:
                return remark(told().dropped, event, key + " was done with by a transition that something else caused");
            case Event_kind::keys_cleared:
                return remark(told().dropped, event, key + " and what waited behind it gave way to a power key");
            case Event_kind::device_lost:
                return remark(told().troubles, event,
                              "an input device was lost, " + std::to_string(event.numbers[0]) + " are left");
            case Event_kind::word:
                return event.numbers[0] == 0
                           ? void()
                           : remark(told().troubles, event, "the word " + quoted(event.text) + " was not written");
            case Event_kind::machine_state:
                return event.numbers[0] == 0
                           ? void()
                           : remark(told().troubles, event, "the machine state " + quoted(event.text) + " was refused");
            default:
                return;
        }
    }

    static void remark(std::vector<trace::Remark>& remarks, Recorded_event const& event, std::string const& text) {
        if (remarks.size() < k_most_remarks) {
            remarks.push_back({seconds(event.at), text});
        }
    }

    void hold_taken(Number hold, std::string const& name, Number at) {
        hold_released(hold, name, at);
        held_[{hold, name}] = told().holds.size();
        told().holds.push_back({hold_word(hold), name, "", seconds(at), {}});
    }

    void hold_released(Number hold, std::string const& name, Number at) {
        auto const held = held_.find({hold, name});
        if (held != held_.end()) {
            told().holds[held->second].end = seconds(at);
            held_.erase(held);
        }
    }

    Recorded_life const& recorded_;
    Power_cycle cycle_;
    Number begin_{0};
    Number last_at_{0};  // the newest moment of the cycle of which both clocks are known
    Number last_real_{0};
    std::map<std::pair<Number, std::string>, std::size_t> held_;  // places in the cycle's holds
    std::vector<Power_cycle> cycles_;
};

bool is_switched_off(Recorded_life const& life) {
    for (auto event = life.events.rbegin(); event != life.events.rend(); ++event) {
        auto const kind = static_cast<Event_kind>(event->kind);
        if (kind == Event_kind::machine_state && event->text == k_normal_shutdown) {
            return false;
        }
        if (kind == Event_kind::transition) {
            return is(event->numbers[1], State::shutting_down) && is(event->numbers[0], State::prepared_sd);
        }
    }
    return false;
}

bool has_ended_loop(Recorded_life const& life) {
    return std::any_of(life.events.begin(), life.events.end(), [](Recorded_event const& event) {
        return static_cast<Event_kind>(event.kind) == Event_kind::ended;
    });
}

bool was_shutting_down(Recorded_life const& life) {
    return std::any_of(life.events.begin(), life.events.end(), [](Recorded_event const& event) {
        return static_cast<Event_kind>(event.kind) == Event_kind::transition &&
               is(event.numbers[1], State::shutting_down);
    });
}

// How a life ended, by what was recorded of it and by what came after it.
std::string end_of(Recorded_life const& life, std::string const& boot_after, Present const& present) {
    if (life.end) {
        return life.end->how;
    }
    if (is_switched_off(life)) {
        return ending::fast;
    }
    if (has_ended_loop(life)) {
        return was_shutting_down(life) ? ending::normal : ending::signal;
    }
    if (life.identity == present.running) {
        return ending::running;
    }
    return life.is_left || life.identity.boot == boot_after ? ending::no_farewell : ending::went_down;
}

}  // namespace

std::vector<Power_cycle> power_cycles(Records const& records, Present const& present) {
    std::vector<Power_cycle> cycles;
    for (std::size_t i = 0; i < records.lives.size(); ++i) {
        auto const& life = records.lives[i];
        auto const& boot_after = i + 1 < records.lives.size() ? records.lives[i + 1].identity.boot : present.boot;
        Teller teller(life);
        for (auto const& event : life.events) {
            teller.take(event);
        }
        auto told = teller.end(end_of(life, boot_after, present));
        std::move(told.begin(), told.end(), std::back_inserter(cycles));
    }
    return cycles;
}

std::string ending_text(Power_cycle const& cycle) {
    bool const is_untold = cycle.ending == ending::went_down || cycle.ending == ending::killed ||
                           cycle.ending == ending::watchdog || cycle.ending == ending::no_farewell ||
                           cycle.ending == ending::signal;
    return is_untold ? cycle.ending + " in " + cycle.state : cycle.ending;
}

bool is_orderly(std::string const& ending) {
    return ending != ending::went_down && ending != ending::killed && ending != ending::watchdog &&
           ending != ending::no_farewell;
}

}  // namespace statectl::record
