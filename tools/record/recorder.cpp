// By main.cpp: `look` with each page, the one of the life before first; a life's end is told with the first
// look at which its daemon is gone.

#include "tools/record/recorder.h"

#include "tools/page/words.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace statectl::record {

namespace {

using nlohmann::json;
using status::Event_kind;
using status::State;

constexpr Number k_alive_every = 600'000'000'000;  // nanoseconds
constexpr Number k_counts_every = 60'000'000'000;
constexpr std::int64_t k_told_setting = 1'000'000'000;  // of the clock; less is an adjustment
constexpr double k_allowance = 2'000;                   // events at once
constexpr double k_allowance_a_second = 50;
constexpr std::size_t k_most_holds = 32;

Number number(State state) {
    return static_cast<Number>(state);
}

bool is(Number kind, Event_kind other) {
    return kind == static_cast<Number>(other);
}

std::string text(json const& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

// What was held at that moment, and still is.
json held_json(Snapshot const& page, Number moment) {
    auto list = json::array();
    for (auto const& instance : page.instances) {
        for (std::size_t hold = 0; hold < instance.since.size(); ++hold) {
            if (instance.since[hold] != 0 && instance.since[hold] < moment && list.size() < k_most_holds) {
                list.push_back({{"hold", hold}, {"name", text_of(instance.name)}});
            }
        }
    }
    return list;
}

Identity identity_of(Snapshot const& page) {
    return {shown(text_of(page.life.boot)), page.life.number, page.life.pid, page.life.started};
}

// Those of the same boot that came and went without a look at their pages.
Number lives_between(Identity const& before, Identity const& after) {
    return before.boot == after.boot && after.number > before.number ? after.number - before.number - 1 : 0;
}

// Another boot's sleeps are none of this one.
std::optional<Number> asleep_at(Snapshot const& page, Look const& now) {
    return page.is_foreign ? std::nullopt : now.asleep;
}

void add_asleep(json& line, std::optional<Number> const& asleep) {
    if (asleep) {
        line["asleep"] = *asleep;
    }
}

// The beginning of what is told of a life: from that moment on, when it had this state and that much was counted.
std::string life_line(Snapshot const& page, Counts const& counts, Number from, Number state, Look const& now) {
    json line({{"line", "life"},
               {"version", 1},
               {"boot", text_of(page.life.boot)},
               {"life", page.life.number},
               {"pid", page.life.pid},
               {"started", page.life.started},
               {"started_real", page.life.started_real},
               {"program", text_of(page.life.program)},
               {"configuration", text_of(page.life.configuration)},
               {"from", from},
               {"state", state},
               {"counted", counts},
               {"held", held_json(page, from)}});
    add_asleep(line, asleep_at(page, now));
    return text(line);
}

std::string line_from_now(Snapshot const& page, Counts const& counts, Look const& now) {
    return life_line(page, counts, page.now, page.driver.state, now);
}

// With all that the page tells of the life.
std::string line_from_beginning(Snapshot const& page, Counts const& counts, Look const& now) {
    if (now.events <= page.events.size()) {
        return life_line(page, counts, page.life.started, number(State::starting_up), now);
    }
    for (auto const& event : page.events) {
        if (is(event.kind, Event_kind::transition)) {
            return life_line(page, counts, page.events.front().at, event.numbers[0], now);
        }
    }
    return line_from_now(page, counts, now);
}

// Another boot's times are no times of this one.
Number real_of(Snapshot const& page, Number at, Look const& now) {
    if (page.is_foreign) {
        return page.life.started_real + (std::max(at, page.life.started) - page.life.started);
    }
    return now.real - std::min(now.real, std::max(now.at, at) - at);
}

}  // namespace

Recorder::Recorder(Record_files& files, Records before, Number watchdog)
    : files_(files), before_(std::move(before)), watchdog_(watchdog), allowance_(k_allowance) {}

bool Recorder::add(char const* line, std::string const& members, Look const& now) {
    return files_.add(std::string(R"({"line":")") + line + R"(","at":)" + std::to_string(now.at) + R"(,"real":)" +
                      std::to_string(now.real) + (now.asleep ? R"(,"asleep":)" + std::to_string(*now.asleep) : "") +
                      R"(,"taken":)" + std::to_string(taken_) + members + '}');
}

void Recorder::look(Snapshot const& page, Look const& now) {
    if (!(identity_ == identity_of(page))) {
        begin_life(page, identity_of(page), now);
    }
    happened_ = std::max(happened_, now.events);
    if (is_begun(page, now)) {
        allowance_ =
            std::min(k_allowance, allowance_ + k_allowance_a_second * static_cast<double>(now.at - looked_) / 1e9);
        write_new_events(page, now);
        write_new_counts(page, now);
        tell_missed(now);
        if (page.is_alive) {
            tell_alive(now);
        }
        if (!page.is_alive && !is_over_) {
            tell_end(page, now);
        }
        first_line_ = line_from_now(page, counts_, now);
    }
    was_alive_ = page.is_alive;
    looked_ = now.at;
    files_.write(first_line_, std::exchange(is_urgent_, false));
}

void Recorder::leave(Look const& now) {
    if (!identity_.boot.empty() && !is_over_) {
        add("left", "", now);
    }
    files_.write(first_line_, true);
}

// A life that stands in the files is gone on with where they end. One that began before those that the newest files
// tell of stands in older ones, or did.
void Recorder::begin_life(Snapshot const& page, Identity const& identity, Look const& now) {
    untold_ += is_over_ ? 0 : happened_ - std::min(happened_, taken_);
    untold_ += lives_between(last_life(), identity);
    identity_ = identity;
    seen_.clear();
    taken_ = taken_until_ = happened_ = told_counts_ = 0;
    counts_ = {};
    is_begun_ = was_alive_ = is_over_ = false;
    told_alive_.reset();
    bool is_known = false;
    bool is_past = false;
    for (auto const& life : before_.lives) {
        is_past = is_past || (life.identity.boot == identity.boot && life.identity.started > identity.started);
        if (life.identity == identity) {
            is_known = true;
            take_up(life);
        }
    }
    is_over_ = is_over_ || (is_past && !is_known);
    is_begun_ = is_over_;
    static_cast<void>(is_begun(page, now));
}

void Recorder::take_up(Recorded_life const& life) {
    is_over_ = life.end.has_value();
    counts_ = life.counts;
    taken_ = life.taken != 0 ? life.taken : life.events.size() + restarts_in(counts_) + life.missed;
    taken_until_ = life.events.empty() ? life.from : life.events.back().at + 1;
}

// Nothing of a life is told before its beginning was.
bool Recorder::is_begun(Snapshot const& page, Look const& now) {
    if (!is_begun_ && files_.has_room()) {
        first_line_ = taken_ != 0 ? line_from_now(page, counts_, now) : line_from_beginning(page, counts_, now);
        is_begun_ = files_.add(first_line_, true);
    }
    return is_begun_;
}

// That was looked at, or stands in the files.
Identity Recorder::last_life() const {
    return identity_.boot.empty() && !before_.lives.empty() ? before_.lives.back().identity : identity_;
}

void Recorder::write_new_events(Snapshot const& page, Look const& now) {
    std::set<Key> on_page;
    for (auto const& event : page.events) {
        auto const what = event_text(page, event);
        Key const key{event.at, event.kind, event.numbers, shown(what)};
        bool const is_new = seen_.count(key) == 0 && event.at >= taken_until_;
        if (is_new && !files_.has_room()) {
            continue;  // it may still stand there when there is some
        }
        on_page.insert(key);
        if (!is_new || event_word(event.kind).empty() || is_over_ || !has_allowance(event.kind)) {
            continue;
        }
        ++taken_;
        is_urgent_ = is_urgent_ || is(event.kind, Event_kind::ended) ||
                     (is(event.kind, Event_kind::transition) && (event.numbers[1] == number(State::preparing) ||
                                                                 event.numbers[1] == number(State::shutting_down)));
        json line({{"line", "event"},
                   {"at", event.at},
                   {"real", real_of(page, event.at, now)},
                   {"event", event_word(event.kind)},
                   {"numbers", event.numbers},
                   {"taken", taken_},
                   {"text", what}});
        add_asleep(line, asleep_at(page, now));
        files_.add(text(line));
    }
    seen_ = std::move(on_page);
}

// Who floods the page with events does not drive the past out of the files.
bool Recorder::has_allowance(Number kind) {
    if (is(kind, Event_kind::transition) || is(kind, Event_kind::ended)) {
        return true;
    }
    allowance_ -= allowance_ >= 1 ? 1 : 0;
    return allowance_ >= 1;
}

// A restart is told at once, for the machine may go with it, and stands among the page's events; the rest may go on and
// on.
void Recorder::write_new_counts(Snapshot const& page, Look const& now) {
    auto const counts = counts_of(page);
    auto const restarts = restarts_in(counts) - std::min(restarts_in(counts), restarts_in(counts_));
    bool const is_due = restarts != 0 || !page.is_alive || told_counts_ == 0 || now.at - told_counts_ >= k_counts_every;
    if (counts == counts_ || !is_due || is_over_ || !files_.has_room()) {
        return;
    }
    auto const at = counted_at(page);
    taken_ += restarts;
    add("counted", R"(,"counts":)" + text(counts), {at, real_of(page, at, now), 0, asleep_at(page, now)});
    counts_ = counts;
    told_counts_ = now.at;
    is_urgent_ = is_urgent_ || restarts != 0;
}

// Events that had gone from the page before they were seen or before a disk had room for them, or that flooded it.
void Recorder::tell_missed(Look const& now) {
    auto const missed = now.events - std::min(now.events, taken_);
    auto const all = missed + untold_;
    if (all != 0 && !is_over_ && files_.has_room()) {
        taken_ += missed;
        untold_ = 0;
        add("missed", R"(,"count":)" + std::to_string(all), now);
    }
}

// Without a sleep, the clock goes as far as the monotonic one. At a life's first look, and where the clock was set, the
// line is what the life is dated by should nothing follow.
void Recorder::tell_alive(Look const& now) {
    auto const begin = static_cast<std::int64_t>(now.real - now.at - now.asleep.value_or(0));
    auto const set_by = begin - clock_begin_.value_or(begin);
    bool const is_set = set_by > k_told_setting || set_by < -k_told_setting;
    bool const is_due = is_set || !told_alive_ || now.at - *told_alive_ >= k_alive_every;
    bool const is_told = is_due && add("alive", is_set ? R"(,"set_by":)" + std::to_string(set_by) : "", now);
    if (is_told) {
        told_alive_ = now.at;
    }
    if (is_told || !is_set) {  // else it is owed
        clock_begin_ = begin;
    }
}

void Recorder::tell_end(Snapshot const& page, Look const& now) {
    bool const is_watched = was_alive_ && now.at - looked_ < watchdog_;
    auto const silent = page.driver.ended == 0 ? page.silent : 0;
    is_over_ =
        add("end", std::string(R"(,"how":")") + end_of(page, is_watched) + R"(","silent":)" + std::to_string(silent),
            {page.now, real_of(page, page.now, now), 0, asleep_at(page, now)});
    is_urgent_ = true;
}

char const* Recorder::end_of(Snapshot const& page, bool is_watched) const {
    auto const& driver = page.driver;
    bool const is_from_suspend =
        driver.state == number(State::shutting_down) && driver.previous == number(State::prepared_sd);
    if (is_from_suspend && text_of(driver.machine_state) != k_normal_shutdown) {
        return ending::fast;
    }
    if (driver.ended != 0) {
        auto const pause = driver.ended - std::min(driver.ended, driver.beat);
        return driver.state == number(State::shutting_down) ? ending::normal
               : pause >= watchdog_                         ? ending::watchdog
                                                            : ending::signal;
    }
    // The watchdog lets a daemon live for its time. How long a silence was that nobody watched can't be known.
    return page.silent < watchdog_ ? ending::killed : is_watched ? ending::watchdog : ending::no_farewell;
}

}  // namespace statectl::record
