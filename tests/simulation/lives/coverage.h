#ifndef TESTS_SIMULATION_LIVES_COVERAGE_H
#define TESTS_SIMULATION_LIVES_COVERAGE_H

#include "bench/rules/rules.h"
#include "situations.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace lives {

/// How often lives have come where.
class Coverage {
 public:
    /// A cycle: what decided, and a number for all that could be asked then: command, conditions, phase of the
    /// notification.
    void decided(bench::rules::Row const& row, std::uint64_t situation);

    /// The rows with how often they decided, how many of the situations that there can be in each state were seen, the
    /// pairs of transitions, and what was seen rarely or never.
    std::string text() const;

    /// What was seen, although the tables say that it can't be: "" when there is nothing.
    std::string impossible() const;

 private:
    std::string text_of_situations() const;

    std::map<bench::rules::Row const*, std::uint64_t> rows_;
    std::map<Situation, std::uint64_t> situations_;
    std::map<std::pair<bench::rules::Row const*, bench::rules::Row const*>, std::uint64_t> pairs_;
    bench::rules::Row const* last_{nullptr};
};

}  // namespace lives

#endif
