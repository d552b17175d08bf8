#ifndef TOOLS_CHECK_CONFIG_FINDING_H
#define TOOLS_CHECK_CONFIG_FINDING_H

#include "tools/check_config/document.h"
#include "tools/check_config/unit.h"
#include "tools/check_config/verdict.h"

#include <cstddef>
#include <string>
#include <vector>

namespace statectl::check_config {

/// Something that the daemon does not say, or not so that one sees it.
struct Finding {
    std::size_t line;  ///< 0 for what has no place in the file
    std::string text;  ///< one sentence, which names the member
};

/// What a check looks at: the file, what the daemon has made of it, and the unit that is to run the daemon.
struct Scene {
    Document const& document;
    Verdict const& verdict;
    Unit const& unit;
};

using Findings = std::vector<Finding>;

/// The checks, each of one subject. Those that look at what the daemon has are for a file that its parser takes.
void check_names(Scene const& scene, Findings& findings);      ///< unknown, missing, misplaced, repeated members
void check_types(Scene const& scene, Findings& findings);      ///< values of another type
void check_values(Scene const& scene, Findings& findings);     ///< values that became others, and those that are odd
void check_layout(Scene const& scene, Findings& findings);     ///< the user data and the default pattern
void check_instances(Scene const& scene, Findings& findings);  ///< the lists of applications
void check_paths(Scene const& scene, Findings& findings);      ///< the control files, under the unit
void check_times(Scene const& scene, Findings& findings);      ///< the unit's time-outs

}  // namespace statectl::check_config

#endif
