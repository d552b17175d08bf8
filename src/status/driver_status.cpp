// All on the driver's thread. `beat` begins each cycle of its loop, and wakes readers, as only the end of the loop
// does too; the cycle's wait for input tells of keys; a change of the state tells `transition`, then what entering it
// leads to, then `command_consumed`.

#include "status/driver_status.h"

#include "status/page_writer.h"
#include "status/rows.h"

#include <algorithm>

namespace status {

namespace {

void put_condition(Page& page) {
    auto& driver = page.driver;
    auto const state = own(driver.state);
    put(driver.condition, condition_of(state));
    auto const oldest = own(driver.waiting) > 0 ? own(driver.queue[0]) : 0;
    put(driver.blocked, blocked_in(state, oldest, own(page.life.nm_usage) != 0));
}

void put_cycle(Driver<Shared_word>& driver, std::uint64_t time) {
    auto const before = own(driver.beat);
    if (before != 0 && time - before > own(driver.longest)) {
        put(driver.longest, time - before);
        put(driver.longest_at, time);
    }
    put(driver.beat, time);
    add(driver.cycles);
}

void remove_oldest(Driver<Shared_word>& driver) {
    auto const told = std::min<std::uint64_t>(own(driver.waiting), k_queue);
    for (std::size_t place = 1; place < told; ++place) {
        put(driver.queue[place - 1], own(driver.queue[place]));
        put(driver.taken_at[place - 1], own(driver.taken_at[place]));
    }
    if (told > 0) {
        put(driver.queue[told - 1], 0U);  // of a longer queue, the last one is not known any more
        put(driver.taken_at[told - 1], 0U);
        subtract(driver.waiting);
    }
}

// The transition that the command has not caused was told last.
void put_swallowed(Driver<Shared_word>& driver, std::uint64_t command, std::uint64_t at) {
    add(driver.keys_swallowed);
    put(driver.last_swallowed, command);
    put(driver.last_swallowed_at, at);
    put(driver.swallowed_from, own(driver.previous));
    put(driver.swallowed_row, own(driver.row));
}

}  // namespace

void beat(bool prepare_sd, bool forced_shutdown) {
    if (auto* const page = status::page()) {
        {
            Change const change(page->driver.sequence);
            put_cycle(page->driver, now());
            put(page->driver.prepare_sd, prepare_sd ? 1U : 0U);
            put(page->driver.forced, forced_shutdown ? 1U : 0U);
            put_condition(*page);
        }
        wake(*page);
    }
}

void transition(std::uint64_t from, std::uint64_t to, std::uint64_t command) {
    if (auto* const page = status::page()) {
        auto const at = now();
        auto& driver = page->driver;
        auto const row = row_of(from, to, command, own(page->life.nm_usage) != 0);
        {
            Change const change(driver.sequence);
            put(driver.state, to);
            put(driver.since, at);
            put(driver.previous, from);
            put(driver.row, row.number);
            put(driver.command, row.command);
            add(driver.transitions);
            put_condition(*page);
        }
        tell(*page, page->driver_ring, at, Event_kind::transition, {from, to, row.number});
    }
}

void log_lost(std::uint64_t messages) {
    auto* const page = status::page();
    if (page != nullptr && own(page->driver.log_lost) != messages) {
        Change const change(page->driver.sequence);
        put(page->driver.log_lost, messages);
        put(page->driver.log_lost_at, now());
    }
}

void knockout_left(std::uint64_t cycles) {
    if (auto* const page = status::page()) {
        Change const change(page->driver.sequence);
        put(page->driver.knockout, cycles);
    }
}

void loop_ended() {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->driver.sequence);
            put(page->driver.ended, at);
        }
        tell(*page, page->driver_ring, at, Event_kind::ended, {own(page->driver.state)});
        wake(*page);
    }
}

void key_taken(std::uint64_t command) {
    if (auto* const page = status::page()) {
        auto const at = now();
        auto& driver = page->driver;
        {
            Change const change(driver.sequence);
            auto const place = own(driver.waiting);
            if (place < k_queue) {
                put(driver.queue[place], command);
                put(driver.taken_at[place], at);
            }
            put(driver.waiting, place + 1);
            add(driver.keys_taken);
            put(driver.last_key, command);
            put(driver.last_key_at, at);
        }
        tell(*page, page->driver_ring, at, Event_kind::key_taken, {command});
    }
}

void key_dropped(std::uint64_t command) {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->driver.sequence);
            add(page->driver.keys_dropped);
            put(page->driver.last_dropped, command);
            put(page->driver.last_dropped_at, at);
        }
        tell(*page, page->driver_ring, at, Event_kind::key_dropped, {command});
    }
}

void queue_cleared() {
    auto* const page = status::page();
    if (page == nullptr || own(page->driver.waiting) == 0) {
        return;
    }
    auto& driver = page->driver;
    auto const oldest = own(driver.queue[0]);
    auto const count = own(driver.waiting);
    auto const at = now();
    {
        Change const change(driver.sequence);
        add(driver.keys_cleared, count);
        put(driver.last_cleared, oldest);
        put(driver.last_cleared_at, at);
        put(driver.waiting, 0U);
        for (std::size_t place = 0; place < k_queue; ++place) {
            put(driver.queue[place], 0U);
            put(driver.taken_at[place], 0U);
        }
    }
    tell(*page, page->driver_ring, at, Event_kind::keys_cleared, {oldest, count});
}

void command_consumed() {
    auto* const page = status::page();
    if (page == nullptr) {
        return;
    }
    auto const& driver = page->driver;
    auto const oldest = own(driver.queue[0]);
    bool const is_swallowed = own(driver.waiting) > 0 && own(driver.command) == 0;
    {
        Change const change(page->driver.sequence);
        if (is_swallowed) {
            put_swallowed(page->driver, oldest, now());
        }
        remove_oldest(page->driver);
        put_condition(*page);
    }
    if (is_swallowed) {
        tell(*page, page->driver_ring, own(driver.last_swallowed_at), Event_kind::key_swallowed,
             {oldest, own(driver.previous), own(driver.row)});
    }
}

void devices_opened(std::uint64_t count) {
    if (auto* const page = status::page()) {
        Change const change(page->driver.sequence);
        put(page->driver.devices_found, count);
        put(page->driver.devices, count);
    }
}

void device_lost(std::uint64_t left) {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->driver.sequence);
            put(page->driver.devices, left);
            add(page->driver.devices_lost);
            put(page->driver.device_lost_at, at);
        }
        tell(*page, page->driver_ring, at, Event_kind::device_lost, {left});
    }
}

void state_word(std::string_view word, Word_fate fate) {
    if (auto* const page = status::page()) {
        auto const at = now();
        auto& driver = page->driver;
        {
            Change const change(driver.sequence);
            put(driver.word, word);
            put(driver.word_at, at);
            put(driver.word_failed, static_cast<std::uint64_t>(fate));
            add(driver.words_failed, fate == Word_fate::written ? 0 : 1);
        }
        tell(*page, page->driver_ring, at, Event_kind::word, {static_cast<std::uint64_t>(fate)}, word);
    }
}

void machine_state(std::string_view state, bool succeeded) {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->driver.sequence);
            put(page->driver.machine_state, state);
            put(page->driver.machine_state_at, at);
            put(page->driver.machine_state_failed, succeeded ? 0U : 1U);
        }
        tell(*page, page->driver_ring, at, Event_kind::machine_state, {succeeded ? 0U : 1U}, state);
    }
}

void supervision_stopped() {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->driver.sequence);
            put(page->driver.supervision_stopped, at);
        }
        tell(*page, page->driver_ring, at, Event_kind::supervision_stopped, {});
    }
}

void default_pattern(bool held) {
    if (auto* const page = status::page()) {
        Change const change(page->driver.sequence);
        put(page->driver.default_held, held ? now() : 0);
    }
}

void group_asked(Group group, std::string_view mode) {
    if (auto* const page = status::page()) {
        auto const at = now();
        {
            Change const change(page->driver.sequence);
            put(page->driver.group, group);
            put(page->driver.group_at, at);
            put(page->driver.mode, mode);
        }
        tell(*page, page->driver_ring, at, Event_kind::group_asked, {static_cast<std::uint64_t>(group)}, mode);
    }
}

}  // namespace status
