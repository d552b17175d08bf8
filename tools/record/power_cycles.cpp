// `power_cycles` hands the events of one life after the other to a teller, which opens and closes cycles, states and
// holds as they come, has requests and troubles told of each, and tells the end of the last one by what stands behind
// it.

#include "tools/record/power_cycles.h"

#include "tools/page/words.h"
#include "tools/record/endings.h"
#include "tools/record/requests.h"
#include "tools/record/troubles.h"
#include "tools/trace/cause.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

namespace statectl::record {

namespace {

using status::Event_kind;
using status::Hold;
using status::State;

class Teller {
 public:
    explicit Teller(Recorded_life const& life) : recorded_(life) {
        begin_cycle(life.from, life.asleep.value_or(0), life.state, is(life.state, State::starting_up) ? "start" : "");
        cycle_.told.has_start = life.from == life.identity.started;
        for (auto const& hold : life.held) {
            hold_taken(hold.hold, hold.name, life.from);
        }
    }

    void note(Recorded_event const& event) {
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
            case Event_kind::released:
                hold_changed(event);
                break;
            default:
                note_request(told(), event);
                note_trouble(told(), event);
        }
    }

    void note(Recorded_count const& counted) {
        if (counted.at > last_at_) {
            last_at_ = counted.at;
            last_real_ = counted.real;
        }
        tell_counts(told(), seconds(std::max(counted.at, begin_)), counted.more);
    }

    /// `now` is the end of a life that has none.
    std::vector<Power_cycle> end(std::string const& how, Number now) {
        auto const at = std::max(
            {recorded_.end ? recorded_.end->at : 0, recorded_.last_at, last_at_, how == ending::running ? now : 0});
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

    void begin_cycle(Number at, Number asleep, Number state, std::string const& cause) {
        cycle_ = {};
        cycle_.life = recorded_.identity.number;
        cycle_.boot = recorded_.identity.boot;
        told().process = static_cast<std::uint32_t>(recorded_.identity.pid);
        told().begin = seconds(at);
        begin_ = at;
        begin_asleep_ = asleep;
        last_at_ = at;
        last_real_ =
            recorded_.last_real - std::min(recorded_.last_real, recorded_.last_at - std::min(recorded_.last_at, at));
        told().stays.push_back({state_word(state), seconds(at), {}, cause});
    }

    // The clock may have been set within the cycle, and is taken to be right later.
    void end_cycle(Number at, std::string const& how, bool is_last) {
        if (how != ending::running) {
            close_group(told(), at);
        }
        auto& last = told().stays.back();
        last.end = is_last ? std::nullopt : std::optional<double>(seconds(at));
        cycle_.state = last.state;
        cycle_.ending = how;
        told().end = seconds(at);
        auto const age = last_at_ - std::min(last_at_, begin_);
        told().stored_us = static_cast<std::int64_t>((last_real_ - std::min(last_real_, age) + begin_asleep_) / 1'000);
        told().ending = ending_text(how, cycle_.state);
        told().is_orderly = is_orderly(how);
        cycles_.push_back(std::move(cycle_));
    }

    void transition(Recorded_event const& event) {
        auto const [from, to, row] = event.numbers;
        auto const cause = cause_text(from, row, who(from, row));
        bool const is_resume = is(to, State::resuming) && (is(from, State::prepared_sd) || is(from, State::preparing));
        close_sequence(told(), event.at, to);
        if (is_resume) {
            auto const held = std::exchange(held_, {});
            end_cycle(event.at, is(from, State::preparing) ? ending::resumed : ending::suspended, false);
            begin_cycle(event.at, event.asleep, to, cause);
            last_real_ = event.real;
            for (auto const& [hold, place] : held) {
                hold_taken(hold.first, hold.second, event.at);
            }
        } else {
            told().stays.back().end = seconds(event.at);
            told().stays.push_back({state_word(to), seconds(event.at), {}, cause});
        }
        if (is(to, State::preparing) || is(to, State::resuming)) {
            open_sequence(told(), event.at, to);
        }
    }

    // Whom a trace names for the same transition.
    std::optional<std::string> who(Number from, Number row) {
        std::vector<std::string> names;
        if (is(from, State::preparing) || is(from, State::resuming)) {
            names = late_in(told());
        } else if (is(from, State::post_run) && row == 1) {
            names = holders({Hold::com_alive, Hold::car_wake_up});
        } else {
            names = holders({Hold::ecu_alive});
        }
        return names.empty() ? "" : trace::enumeration(names);
    }

    // Each once, as they began.
    std::vector<std::string> holders(std::vector<Hold> const& kinds) {
        std::vector<std::string> names;
        for (auto const& hold : told().holds) {
            bool const counts = !hold.end && std::any_of(kinds.begin(), kinds.end(), [&](Hold kind) {
                return hold.what == hold_word(static_cast<Number>(kind));
            });
            if (counts && std::find(names.begin(), names.end(), hold.who) == names.end()) {
                names.push_back(hold.who);
            }
        }
        return names;
    }

    // The second number says that it is the other way round: nothing was asked for, or not all was given up.
    void hold_changed(Recorded_event const& event) {
        if ((static_cast<Event_kind>(event.kind) == Event_kind::held) == (event.numbers[1] == 0)) {
            hold_taken(event.numbers[0], event.text, event.at);
        } else {
            hold_released(event.numbers[0], event.text, event.at);
        }
    }

    // Who holds it may ask again.
    void hold_taken(Number hold, std::string const& name, Number at) {
        if (held_.insert({{hold, name}, told().holds.size()}).second) {
            told().holds.push_back({hold_word(hold), name, "", seconds(at), {}});
        }
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
    Number begin_asleep_{0};  // since the boot
    Number last_at_{0};       // the newest moment of the cycle of which both clocks are known
    Number last_real_{0};
    std::map<std::pair<Number, std::string>, std::size_t> held_;  // places in the cycle's holds
    std::vector<Power_cycle> cycles_;
};

// Into the cycle that had begun.
void tell_settings(std::vector<Power_cycle>& cycles, Recorded_life const& life) {
    for (auto const& setting : life.settings) {
        auto const had_begun = [&](Power_cycle const& cycle) { return cycle.told.begin <= seconds(setting.at); };
        auto const cycle = std::find_if(cycles.rbegin(), cycles.rend(), had_begun);
        if (cycle != cycles.rend()) {
            auto& troubles = cycle->told.troubles;
            auto const later = std::find_if(troubles.begin(), troubles.end(), [&](trace::Remark const& trouble) {
                return trouble.time > seconds(setting.at);
            });
            troubles.insert(later, {seconds(setting.at), setting_text(setting.by)});
        }
    }
}

}  // namespace

std::vector<Power_cycle> power_cycles(Records const& records, Present const& present) {
    std::vector<Power_cycle> cycles;
    for (std::size_t i = 0; i < records.lives.size(); ++i) {
        auto const& life = records.lives[i];
        auto const& boot_after = i + 1 < records.lives.size() ? records.lives[i + 1].identity.boot : present.boot;
        Teller teller(life);
        auto counted = life.counted.begin();
        for (auto const& event : life.events) {
            for (; counted != life.counted.end() && counted->at < event.at; ++counted) {
                teller.note(*counted);
            }
            teller.note(event);
        }
        std::for_each(counted, life.counted.end(), [&](Recorded_count const& rest) { teller.note(rest); });
        auto told = teller.end(end_of(life, boot_after, present), present.now);
        tell_settings(told, life);
        std::move(told.begin(), told.end(), std::back_inserter(cycles));
    }
    return cycles;
}

}  // namespace statectl::record
