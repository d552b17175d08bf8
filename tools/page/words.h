#ifndef TOOLS_PAGE_WORDS_H
#define TOOLS_PAGE_WORDS_H

#include "tools/page/page_view.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace statectl {

// The words for what the page says in numbers.

std::string state_word(Number state);
std::string command_word(Number command);
std::string group_word(Number group);
std::string answer_word(Number answer);
std::string hold_word(Number hold);
std::string ecu_word(Number ecu_state);
std::string call_word(Number call);

/// 16 hexadecimal digits.
std::string digest_text(Number digest);

/// What a restart request of this type restarts.
std::string restart_word(Number type);

/// What to say to him who has asked for it.
std::string restart_request_text(Number type);

/// The record of the client's name; null when it had no room.
status::Name<Number> const* record_of(Snapshot const& page, status::Client<Number> const& client);

/// The event's text; a name that is cut in it as the page has it elsewhere.
std::string event_text(Snapshot const& page, status::Event<Number> const& event);

/// What answers in time took; 0 when there was none.
Number mean_of(status::Name<Number> const& name);

/// The event's name, as `wait --event` takes it; empty for a kind that this program does not know.
std::string event_word(Number kind);
std::vector<std::string> event_words();

/// Why the state before was left, by the row of its table. `who` is known to have kept something alive, or to have had
/// his time; empty where it was nobody.
std::string cause_text(Number state, Number row, std::optional<std::string> const& who = {});

/// A span, "12.4 s", "3 min 5 s", "2 h 10 min".
std::string span_text(Number nanoseconds);
/// From one time to a later one.
std::string span_text(Number from, Number to);

/// The first character of a text, by its number and bytes; a byte that is of none is one by itself, without a number.
struct Character {
    std::size_t bytes;
    std::uint32_t number;
};
constexpr std::uint32_t k_no_character = 0xffffffff;
Character character_at(std::string_view text);

/// What somebody else has written, without what a terminal would obey or what is no UTF-8; and the same in quotes.
std::string shown(std::string const& text);
std::string quoted(std::string const& name);

/// "a, b and c"
std::string joined(std::vector<std::string> const& texts);

/// The user's name, or his number.
std::string user_word(Number uid);

/// The systemd unit of a process that still runs; empty when that can't be known.
std::string unit_of(Number pid);

}  // namespace statectl

#endif
