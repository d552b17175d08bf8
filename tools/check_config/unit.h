#ifndef TOOLS_CHECK_CONFIG_UNIT_H
#define TOOLS_CHECK_CONFIG_UNIT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace statectl::check_config {

/// What the checks ask of the unit that runs the daemon. A time that is not there is not watched.
struct Unit {
    std::string name;
    std::optional<double> watchdog_seconds;
    std::optional<double> stop_seconds{90};  ///< the service manager's own
    bool is_strict{false};                   ///< nothing but the paths below may be written
    bool has_private_tmp{false};
    std::vector<std::string> writable;
    std::string user{"root"};
    std::vector<std::string> groups;    ///< its own first, then the supplementary ones
    std::vector<std::string> prefixes;  ///< below which systemd-tmpfiles(8) sets rights at each start
};

/// Takes over the directives of a unit or of a drop-in, as the service manager does: the last one counts, lists grow.
void read_unit(std::string_view text, Unit& unit);

/// The unit as it is shipped.
Unit shipped_unit();

/// The unit in a file, or the installed one of a name, each with its drop-ins. Throws `std::runtime_error` when there
/// is none.
Unit unit_named(std::string const& name);

}  // namespace statectl::check_config

#endif
