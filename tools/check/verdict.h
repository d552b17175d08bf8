#ifndef TOOLS_CHECK_VERDICT_H
#define TOOLS_CHECK_VERDICT_H

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

namespace statectl::check {

/// The program under check breaks the rule that is being looked at; the text says how.
class Broken : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// The rule can't be looked at, because the program breaks another one first.
class Not_checkable : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

enum class Outcome { holds, broken, not_checked };

struct Verdict {
    std::string rule;
    std::string text;  ///< the rule in words
    Outcome outcome;
    std::string why;                                          ///< empty when it holds
    std::optional<std::chrono::milliseconds> longest_answer;  ///< of those that were awaited and came
};

}  // namespace statectl::check

#endif
