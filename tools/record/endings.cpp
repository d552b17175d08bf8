#include "tools/record/endings.h"

#include "status/layout.h"

#include <algorithm>

namespace statectl::record {

namespace {

using status::Event_kind;
using status::State;

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

}  // namespace

std::string end_of(Recorded_life const& life, std::string const& boot_after, Present const& present) {
    if (life.end) {
        return life.end->how;
    }
    if (life.identity == present.running) {
        return ending::running;  // a switch-off that hangs or was refused is none
    }
    if (is_switched_off(life)) {
        return ending::fast;
    }
    if (has_ended_loop(life)) {
        return was_shutting_down(life) ? ending::normal : ending::signal;
    }
    return life.is_left || life.identity.boot == boot_after ? ending::no_farewell : ending::went_down;
}

std::string ending_text(std::string const& ending, std::string const& state) {
    return !is_orderly(ending) || ending == ending::signal ? ending + " in " + state : ending;
}

bool is_orderly(std::string const& ending) {
    return ending != ending::went_down && ending != ending::killed && ending != ending::watchdog &&
           ending != ending::no_farewell;
}

}  // namespace statectl::record
