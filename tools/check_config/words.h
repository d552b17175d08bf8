#ifndef TOOLS_CHECK_CONFIG_WORDS_H
#define TOOLS_CHECK_CONFIG_WORDS_H

#include "tools/check_config/members.h"

#include <cstddef>
#include <string>

namespace statectl::check_config {

/// How many letters have to be put in, taken out, changed or swapped with their neighbour to make one word the other;
/// upper and lower case are the same.
std::size_t distance(std::string const& left, std::string const& right);

/// Whether a word is the other one with a slip of the pen.
bool is_like(std::string const& left, std::string const& right);

/// What a value is: "text", "a number", "a list".
std::string type_name(nlohmann::json const& value);

/// What a member has to be: "a number", "true or false".
std::string type_name(Kind kind);

/// Whether a value is what the daemon takes for that kind.
bool has_type(nlohmann::json const& value, Kind kind);

/// 12.0 as "12", 12.25 as "12.3".
std::string seconds_text(double seconds);

}  // namespace statectl::check_config

#endif
