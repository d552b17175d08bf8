#ifndef TOOLS_CHECK_CONFIG_VERDICT_H
#define TOOLS_CHECK_CONFIG_VERDICT_H

#include "tools/check_config/members.h"

#include <memory>
#include <string>

namespace statectl::check_config {

/// What the daemon makes of a configuration file.
struct Verdict {
    bool is_parsed{false};  ///< its parser takes the file
    bool is_taken{false};   ///< and the start goes on with it
    std::string reason;     ///< for one that is refused: the daemon's own words
    /// What it has of the file; of a refused one only what came before the reason.
    std::unique_ptr<Config> config{std::make_unique<Config>()};
};

/// Asks the daemon's own parser, and then what builds its services. While it asks, it is the only one in this process
/// that looks at the log.
Verdict ask_daemon(std::string const& path);

}  // namespace statectl::check_config

#endif
