#ifndef CHECK_CLIENT_H
#define CHECK_CLIENT_H

#include "statectl.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace statectl {

/// The command line of a check of this program.
std::vector<std::string> check(std::vector<std::string> const& program, char const* patience_ms = "1500");

/// The rules of a report that had this result.
std::vector<std::string> rules_with(nlohmann::json const& report, std::string const& result);

std::vector<std::string> all_rules();

}  // namespace statectl

#endif
