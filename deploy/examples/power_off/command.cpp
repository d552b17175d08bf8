#include "command.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace power_off {

namespace {

// The process is looked for by a name, never by a path or a pattern.
constexpr std::size_t k_longest_name = 64;

bool is_name(std::string_view text) {
    return !text.empty() && text.size() <= k_longest_name && text.find_first_of("/ \t") == std::string_view::npos;
}

std::optional<Command> parse_power_off(std::string_view number) {
    std::int64_t milliseconds = 0;
    auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), milliseconds);
    if (error != std::errc{} || end != number.data() + number.size()) {
        return std::nullopt;
    }
    // Longer than a day is not meant; the bound keeps sums of times in range.
    constexpr std::int64_t day = 24LL * 60 * 60 * 1000;
    return Power_off{std::chrono::milliseconds(std::clamp<std::int64_t>(milliseconds, 0, day))};
}

}  // namespace

std::optional<Command> parse(std::string const& line) {
    auto const blank = line.find(' ');
    auto const word = line.substr(0, blank);
    auto const argument = blank == std::string::npos ? std::string_view{} : std::string_view(line).substr(blank + 1);
    if (word == "lookup" && is_name(argument)) {
        return Lookup{std::string(argument)};
    }
    if (line == "terminate") {
        return Terminate{};
    }
    if (word == "poweroff") {
        return parse_power_off(argument);
    }
    return std::nullopt;
}

}  // namespace power_off
