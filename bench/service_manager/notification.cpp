#include "bench/service_manager/notification.h"

#include <sstream>

namespace bench::service_manager {

std::map<std::string, std::string> parse_assignments(std::string const& datagram) {
    std::map<std::string, std::string> variables;
    std::istringstream lines(datagram);
    for (std::string line; std::getline(lines, line);) {
        std::size_t const equals = line.find('=');
        if (!line.empty()) {
            variables[line.substr(0, equals)] = equals == std::string::npos ? "" : line.substr(equals + 1);
        }
    }
    return variables;
}

void Reports::count(Notification const& notification) {
    auto const has = [&](char const* name) {
        auto const variable = notification.variables.find(name);
        return variable != notification.variables.end() && variable->second == "1";
    };
    ready += has("READY") ? 1 : 0;
    stopping += has("STOPPING") ? 1 : 0;
    if (has("WATCHDOG")) {
        ++watchdog;
        last_watchdog = notification.time;
    }
}

}  // namespace bench::service_manager
