#ifndef TOOLS_SERVICE_CALL_H
#define TOOLS_SERVICE_CALL_H

#include "services/found_instance.h"
#include "services/offered_instances.h"
#include "tarq/com/runtime/component_singleton.h"
#include "tools/command.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace statectl {

/// What every command that calls one instance of a service is told.
struct Call_options {
    std::string instance;
    std::int64_t wait_ms{2000};  ///< for the instance to be offered
    bool as_json{false};
};

/// Adds --wait and --json.
void add_call_options(CLI::App& command, Call_options& options);

/// How a call came out: one line on standard output, or on standard error for people when it failed. Returns the exit
/// status.
int report_success(Call_options const& options, std::string const& done, std::chrono::microseconds duration);
int report_failure(Call_options const& options, std::string const& error);

/// Why there is no such instance: which ones there are.
std::string not_offered_text(std::string const& instance, std::vector<std::string> const& offered);
template <class Proxy>
std::string not_offered(std::string const& instance) {
    return not_offered_text(instance, services::offered_instances<Proxy>(std::chrono::milliseconds(200)));
}

/// Waits for the instance, makes the call, waits for its answer and reports. `operation` gets the proxy and returns the
/// call's future; `done` says what has happened by then, "ECU alive requested".
template <class Proxy, class Operation>
int call(Call_options const& options, std::string const& done, Operation const& operation) {
    using Clock = std::chrono::steady_clock;
    try {
        tarq::com::runtime::Component_singleton const communication(false, "");
        services::Found_instance<Proxy> instance(options.instance);
        auto const proxy = instance.await(std::chrono::milliseconds(options.wait_ms));
        if (!proxy) {
            return report_failure(options, not_offered<Proxy>(options.instance));
        }
        auto const start = Clock::now();
        operation(*proxy).get();
        return report_success(options, done, std::chrono::ceil<std::chrono::microseconds>(Clock::now() - start));
    } catch (std::exception const& error) {
        return report_failure(options, error.what());
    }
}

}  // namespace statectl

#endif
