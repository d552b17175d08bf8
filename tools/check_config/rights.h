#ifndef TOOLS_CHECK_CONFIG_RIGHTS_H
#define TOOLS_CHECK_CONFIG_RIGHTS_H

#include "tools/check_config/unit.h"

#include <string>

namespace statectl::check_config {

/// What keeps the unit's user from writing into a file, as this machine has both now, and what helps. Empty where
/// nothing does, where the start of the unit gives the right, and where it can't be looked at: no such user or file
/// here, a file with an access control list.
std::string missing_right(std::string const& path, Unit const& unit);

}  // namespace statectl::check_config

#endif
