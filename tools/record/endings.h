#ifndef TOOLS_RECORD_ENDINGS_H
#define TOOLS_RECORD_ENDINGS_H

#include "tools/record/records.h"

#include <string>

namespace statectl::record {

/// What is known of the machine that asks.
struct Present {
    std::string boot;
    Identity running;  ///< the daemon that runs, if one does
    Number now{0};     ///< then, by CLOCK_MONOTONIC
};

/// How a life's last power cycle ended, one of `ending`: by what was recorded of it, and by what came after it.
std::string end_of(Recorded_life const& life, std::string const& boot_after, Present const& present);

/// "went down in Preparing" and its likes.
std::string ending_text(std::string const& ending, std::string const& state);

/// It ended as it should, or has not ended.
bool is_orderly(std::string const& ending);

}  // namespace statectl::record

#endif
