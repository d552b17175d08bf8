#ifndef TESTS_FAULTS_OUTCOMES_H
#define TESTS_FAULTS_OUTCOMES_H

#include "one_life.h"
#include "trials.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace faults {

/// What came of all trials.
class Outcomes {
 public:
    /// Prints what is wrong, and with `shows_all` all others as well. `line` is the trial in words.
    void note(Trial const& trial, Verdict const& verdict, std::string const& line, bool shows_all);

    /// A row for each call; each outcome with the errors that led to it, and how often.
    void print_table() const;

    /// A text each.
    std::vector<std::string> const& wrong() const { return wrong_; }

 private:
    /// For each call and outcome the errors that led to it, counted.
    using Table = std::map<std::string, std::map<std::size_t, std::map<std::string, unsigned>>>;

    Table table_;
    std::vector<unsigned> totals_{std::vector<unsigned>(k_outcomes)};
    std::vector<std::string> wrong_;
};

}  // namespace faults

#endif
