#include "tools/service_call.h"

#include "tools/json_text.h"
#include "tools/page/words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace statectl {

void add_call_options(CLI::App& command, Call_options& options) {
    constexpr std::int64_t k_longest_ms = 86'400'000;
    command.add_option("--wait", options.wait_ms, "Milliseconds to wait for the instance to be offered")
        ->check(CLI::Range(std::int64_t{0}, k_longest_ms))
        ->capture_default_str();
    command.add_flag("--json", options.as_json, "Tell the result as a JSON object");
}

std::string not_offered_text(std::string const& instance, std::vector<std::string> const& offered) {
    if (std::find(offered.begin(), offered.end(), instance) != offered.end()) {
        return quoted(instance) + " was offered too late; a longer --wait finds it";
    }
    std::vector<std::string> names(offered.size());
    std::transform(offered.begin(), offered.end(), names.begin(), quoted);
    return quoted(instance) + " is not offered; " +
           (names.empty() ? "nor is any other instance of this service" : "offered: " + joined(names));
}

int report_success(Call_options const& options, std::string const& done, std::chrono::microseconds duration) {
    if (options.as_json) {
        nlohmann::json const result{
            {"ok", true}, {"instance", options.instance}, {"done", done}, {"microseconds", duration.count()}};
        std::puts(json_text(result).c_str());
    } else {
        std::printf("%s for \"%s\" (%.2f ms)\n", done.c_str(), options.instance.c_str(),
                    static_cast<double>(duration.count()) / 1000);
    }
    return k_success;
}

int report_failure(Call_options const& options, std::string const& error) {
    if (options.as_json) {
        nlohmann::json const result{{"ok", false}, {"instance", options.instance}, {"error", error}};
        std::puts(json_text(result).c_str());
    } else {
        std::fprintf(stderr, "ap_statectl: %s\n", error.c_str());
    }
    return k_failure;
}

}  // namespace statectl
