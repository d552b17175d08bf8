#include "tools/check_config/times.h"

#include "tools/check_config/finding.h"
#include "tools/check_config/words.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace statectl::check_config {

namespace {

constexpr double k_call = 2;               // to a network manager that does not answer, connecting included
constexpr double k_own_calls = 4;          // of the daemon, at a suspend or a resume
constexpr double k_service_manager = 1.2;  // a request of a machine state
constexpr double k_last_request = 10;      // waited for after a stop
constexpr double k_log = 4;                // for what waits in it at the end
constexpr double k_ms = 1000;

// Calls to the network manager for one request of each application: a COM alive request makes two.
double calls_of_applications(Config const& config) {
    return static_cast<double>(config.get_apps_ecualive().size() + 2 * config.get_apps_comalive().size() +
                               config.get_apps_cwu().size());
}

std::string for_a_unit(double seconds) {
    return seconds_text(std::floor(seconds) + 1) + 's';
}

void check_time(std::string const& directive, std::optional<double> const& has, double needs, char const* what,
                Unit const& unit, Findings& findings) {
    if (has && *has <= needs) {
        findings.push_back({0, directive + " of " + unit.name + " is " + seconds_text(*has) + "s, and " + what +
                                   " may take " + seconds_text(needs) + " s: put into a drop-in [Service] " +
                                   directive + '=' + for_a_unit(needs)});
    }
}

}  // namespace

Times times_of(Config const& config) {
    Times times{};
    double const period = config.get_main_function_period() / k_ms;
    double const applications = config.is_nm_usage_allowed() ? calls_of_applications(config) * k_call : 0;
    double const own = config.is_nm_usage_allowed() ? k_own_calls * k_call : 0;
    times.suspend = times.resume = 2.0 * config.get_dm_timeout() + config.get_app_timeout();
    times.knock_out = config.get_knockout_timer() * period;
    times.cycle = own + applications + period + k_service_manager;
    times.stop = times.cycle + applications + k_last_request + k_log;
    // A beat may be owed for half of the time.
    times.watchdog = std::max(times.cycle, 2 * (period + k_service_manager));
    return times;
}

void check_times(Scene const& scene, Findings& findings) {
    if (!scene.verdict.is_taken) {
        return;
    }
    auto const times = times_of(*scene.verdict.config);
    check_time("WatchdogSec", scene.unit.watchdog_seconds, times.watchdog, "what it watches", scene.unit, findings);
    check_time("TimeoutStopSec", scene.unit.stop_seconds, times.stop, "a stop", scene.unit, findings);
}

}  // namespace statectl::check_config
