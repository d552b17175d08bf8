// Called by the subcommands that show the status page, and by reasons.cpp for them. Words stand in the order of the
// numbers that status/layout.h and the daemon's states give.

#include "tools/page/words.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <map>

#include <pwd.h>

namespace statectl {

namespace {

template <std::size_t count>
std::string word_at(std::array<std::string_view, count> const& words, Number number) {
    return number < count ? std::string(words[number]) : "unknown (" + std::to_string(number) + ")";
}

constexpr std::array<std::string_view, 24> k_events{
    "",
    "transition",
    "key-taken",
    "key-dropped",
    "word",
    "machine-state",
    "group-asked",
    "request-ended",
    "client-connected",
    "client-left",
    "client-answered",
    "client-late",
    "client-timed-out",
    "client-vanished",
    "client-out-of-turn",
    "held",
    "released",
    "manager-found",
    "network-state",
    "device-lost",
    "ended",
    "key-swallowed",
    "keys-cleared",
    "supervision-stopped",
};

// Control characters, and those that turn the order of what stands around them.
bool is_obeyed(std::uint32_t character) {
    return character < ' ' || (character >= 0x7f && character <= 0x9f) ||
           (character >= 0x202a && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069) ||
           character == k_no_character;
}

}  // namespace

Character character_at(std::string_view text) {
    constexpr std::array<std::uint32_t, 5> k_smallest{0, 0, 0x80, 0x800, 0x10000};
    auto const first = static_cast<unsigned char>(text[0]);
    std::size_t const bytes = first < 0x80   ? 1
                              : first < 0xc0 ? 0
                              : first < 0xe0 ? 2
                              : first < 0xf0 ? 3
                              : first < 0xf8 ? 4
                                             : 0;
    if (bytes <= 1) {
        return {1, bytes == 1 ? first : k_no_character};
    }
    std::uint32_t number = first & (0x7fU >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        auto const next = i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
        if ((next & 0xc0U) != 0x80) {
            return {1, k_no_character};
        }
        number = number << 6U | (next & 0x3fU);
    }
    return number < k_smallest[bytes] || number > 0x10ffff ? Character{1, k_no_character} : Character{bytes, number};
}

std::string state_word(Number state) {
    constexpr std::array<std::string_view, 8> k_words{"Starting up",   "Running",   "NM Controlled", "Post Run",
                                                      "Shutting down", "Preparing", "PreparedSD",    "Resuming"};
    return word_at(k_words, state);
}

std::string command_word(Number command) {
    constexpr std::array<std::string_view, 6> k_words{"none",      "Run",     "NmControlled", "NMControlledPrepareSD",
                                                      "PrepareSD", "Shutdown"};
    return word_at(k_words, command);
}

std::string group_word(Number group) {
    constexpr std::array<std::string_view, 4> k_words{"nobody", "diagnostic communication", "applications",
                                                      "diagnostic events"};
    return word_at(k_words, group);
}

std::string answer_word(Number answer) {
    constexpr std::array<std::string_view, 7> k_words{"not asked", "asked", "in time", "failed",
                                                      "timed out", "late",  "replaced"};
    return word_at(k_words, answer);
}

std::string hold_word(Number hold) {
    constexpr std::array<std::string_view, 3> k_words{"ECU alive", "COM alive", "car wake-up"};
    return word_at(k_words, hold);
}

std::string ecu_word(Number ecu_state) {
    constexpr std::array<std::string_view, 3> k_words{"active", "ready sleep", "sleep mode"};
    return word_at(k_words, ecu_state);
}

std::string call_word(Number call) {
    constexpr std::array<std::string_view, status::k_network_calls> k_words{"RequestNetwork", "ReleaseNetwork",
                                                                            "SetUserData"};
    return word_at(k_words, call);
}

std::string digest_text(Number digest) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(digest));
    return text.data();
}

std::string restart_word(Number type) {
    constexpr std::array<std::string_view, status::k_restart_types> k_words{
        "an unknown type",   "this machine",      "type 2, no action",
        "type 3, no action", "type 4, no action", "the co-processor (M3)"};
    return std::string(k_words.at(type < k_words.size() ? type : 0));
}

std::string restart_request_text(Number type) {
    constexpr Number k_machine = 1;
    constexpr Number k_co_processor = 5;
    return "Restart of type " + std::to_string(type) + " requested" +
           (type == k_machine || type == k_co_processor
                ? ""
                : ", of which nothing comes but a line in the state manager's log");
}

status::Name<Number> const* record_of(Snapshot const& page, status::Client<Number> const& client) {
    auto const found = std::find_if(page.names.begin(), page.names.end(), [&](auto const& name) {
        return name.digest == client.name_digest && name.name.words == client.name.words;
    });
    return found == page.names.end() ? nullptr : &*found;
}

std::string event_text(Snapshot const& page, status::Event<Number> const& event) {
    using status::Event_kind;
    auto text = text_of(event.text);
    auto const number = event.numbers[2];
    if (text.size() < sizeof event.text || number == 0) {
        return text;
    }
    if (event.kind == static_cast<Number>(Event_kind::held) ||
        event.kind == static_cast<Number>(Event_kind::released)) {
        return number <= page.instances.size() ? text_of(page.instances[number - 1].name) : text;
    }
    auto const found =
        std::find_if(page.names.begin(), page.names.end(), [&](auto const& name) { return name.digest == number; });
    return found == page.names.end() ? text : text_of(found->name);
}

Number mean_of(status::Name<Number> const& name) {
    auto const answers = name.in_time + name.failed;
    return answers == 0 ? 0 : name.total / answers;
}

std::string event_word(Number kind) {
    return kind < k_events.size() ? std::string(k_events[kind]) : "";
}

std::vector<std::string> event_words() {
    return {k_events.begin() + 1, k_events.end()};
}

std::string cause_text(Number state, Number row, std::optional<std::string> const& who) {
    /// What is said where nobody knows who did it, where it was nobody, and where it was @; null as the first one.
    struct Cause {
        char const* text;
        char const* by_nobody;
        char const* by_somebody;
    };
    constexpr Cause k_asleep{"the network was asleep, and nobody kept the ECU alive", nullptr, nullptr};
    constexpr Cause k_ecu{"nobody kept the ECU alive, or the knock-out time was over", "nobody kept the ECU alive",
                          "the knock-out time was over, and @ kept the ECU alive"};
    constexpr Cause k_answers{"all clients had answered or had their time", "all clients had answered",
                              "@ did not answer in time"};
    static auto const& causes = *new std::map<std::pair<Number, Number>, Cause>{
        {{0, 1}, {"network management is not used", nullptr, nullptr}},
        {{0, 2}, {"the network manager's services were found", nullptr, nullptr}},
        {{1, 1}, {"command NmControlled", nullptr, nullptr}},
        {{1, 2}, {"command NMControlledPrepareSD", nullptr, nullptr}},
        {{1, 3}, {"command PrepareSD", nullptr, nullptr}},
        {{1, 4}, {"command Shutdown", nullptr, nullptr}},
        {{2, 1}, {"command Run", nullptr, nullptr}},
        {{2, 2},
         {"the network was asleep, and applications kept the ECU alive", nullptr,
          "the network was asleep, and @ kept the ECU alive"}},
        {{2, 3}, {"command Shutdown", nullptr, nullptr}},
        {{2, 4}, k_asleep},
        {{2, 5}, {"command PrepareSD", nullptr, nullptr}},
        {{2, 6}, k_asleep},
        {{3, 1}, {"applications kept communication alive", nullptr, "@ kept communication alive"}},
        {{3, 2}, {"command Shutdown", nullptr, nullptr}},
        {{3, 3}, k_ecu},
        {{3, 4}, {"command Run", nullptr, nullptr}},
        {{3, 5}, {"command PrepareSD", nullptr, nullptr}},
        {{3, 6}, k_ecu},
        {{5, 1}, {"command Run", nullptr, nullptr}},
        {{5, 3}, k_answers},
        {{6, 1}, {"command Run", nullptr, nullptr}},
        {{6, 2}, {"command Shutdown", nullptr, nullptr}},
        {{7, 1}, {"command Shutdown", nullptr, nullptr}},
        {{7, 3}, k_answers},
    };
    auto const found = causes.find({state, row});
    if (found == causes.end()) {
        return "";
    }
    auto const& cause = found->second;
    auto const* const told = !who ? nullptr : who->empty() ? cause.by_nobody : cause.by_somebody;
    std::string text = told == nullptr ? cause.text : told;
    if (auto const place = text.find('@'); place != std::string::npos) {
        text.replace(place, 1, *who);
    }
    return text;
}

std::string span_text(Number nanoseconds) {
    constexpr Number k_tenth = 100'000'000;
    constexpr Number k_minute = 60;
    constexpr Number k_hour = 3600;
    auto const tenths = nanoseconds / k_tenth;
    auto const seconds = tenths / 10;
    std::array<char, 48> text{};
    if (seconds < k_minute) {
        std::snprintf(text.data(), text.size(), "%llu.%llu s", static_cast<unsigned long long>(seconds),
                      static_cast<unsigned long long>(tenths % 10));
    } else if (seconds < k_hour) {
        std::snprintf(text.data(), text.size(), "%llu min %llu s", static_cast<unsigned long long>(seconds / k_minute),
                      static_cast<unsigned long long>(seconds % k_minute));
    } else {
        std::snprintf(text.data(), text.size(), "%llu h %llu min", static_cast<unsigned long long>(seconds / k_hour),
                      static_cast<unsigned long long>(seconds % k_hour / k_minute));
    }
    return text.data();
}

std::string span_text(Number from, Number to) {
    return span_text(to > from ? to - from : 0);
}

std::string shown(std::string const& text) {
    std::string plain;
    for (std::string_view rest = text; !rest.empty();) {
        auto const first = character_at(rest);
        plain += is_obeyed(first.number) ? "?" : rest.substr(0, first.bytes);
        rest.remove_prefix(first.bytes);
    }
    return plain;
}

std::string quoted(std::string const& name) {
    return '"' + shown(name) + '"';
}

std::string joined(std::vector<std::string> const& texts) {
    std::string text;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == texts.size() ? " and " : ", ") + texts[i];
    }
    return text;
}

std::string user_word(Number uid) {
    auto const* const user = ::getpwuid(static_cast<uid_t>(uid));
    return user == nullptr ? std::to_string(uid) : user->pw_name;
}

std::string unit_of(Number pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/cgroup");
    for (std::string line; std::getline(file, line);) {
        auto unit = line.substr(line.rfind('/') + 1);
        for (std::string_view const kind : {".service", ".scope"}) {
            if (unit.size() > kind.size() && unit.compare(unit.size() - kind.size(), kind.size(), kind) == 0) {
                return unit;
            }
        }
    }
    return "";
}

}  // namespace statectl
