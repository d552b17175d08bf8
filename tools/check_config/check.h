#ifndef TOOLS_CHECK_CONFIG_CHECK_H
#define TOOLS_CHECK_CONFIG_CHECK_H

#include "tools/check_config/finding.h"
#include "tools/check_config/times.h"

#include <optional>
#include <string>

namespace statectl::check_config {

/// What is asked about a configuration.
struct Question {
    std::string file;
    std::optional<std::string> host;      ///< that is to read it
    std::optional<double> limit_seconds;  ///< that a suspend may take
    Unit unit{shipped_unit()};
};

/// The answer.
struct Answer {
    Verdict verdict;
    Findings findings;                     ///< in the order of the file
    std::optional<Times> times;            ///< of a file that is taken
    std::optional<std::string> read_file;  ///< the file that a machine of that name reads
};

/// Throws nothing for what is wrong with the file.
Answer check(Question const& question);

}  // namespace statectl::check_config

#endif
