#ifndef TOOLS_SECONDS_OPTION_H
#define TOOLS_SECONDS_OPTION_H

#include <CLI/CLI.hpp>
#include <string>

namespace statectl {

/// Accepts a number of seconds from `least` to 1,000,000,000 (31 years), which every clock can count. CLI11's own
/// ranges accept "nan" as well, which no moment is after.
inline CLI::Validator seconds_from(double least) {
    constexpr double k_longest = 1e9;
    auto const check = [least](std::string const& text) {
        double seconds = 0;
        bool const is_good = CLI::detail::lexical_cast(text, seconds) && seconds >= least && seconds <= k_longest;
        return is_good ? std::string() : "not a number of seconds, or too many or few: " + text;
    };
    return {check, "SECONDS"};
}

}  // namespace statectl

#endif
