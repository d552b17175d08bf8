#include "bench/process/child_process.h"
#include "benchmarks/communication/yardsticks.h"

#include <csignal>
#include <regex>

#include <unistd.h>

namespace benchmarks {

namespace {

std::string output_of(bench::Child_process const& process) {
    std::string output;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(process.output(), buffer, sizeof buffer)) > 0;) {
        output.append(buffer, static_cast<std::size_t>(count));
    }
    return output;
}

}  // namespace

std::optional<double> engine_round_trip_us(std::string const& engine_configuration) {
    std::vector<std::string> const environment{"CYCLONEDDS_URI=" + engine_configuration};
    bench::Child_process pong({"ddsperf", "-D", "6", "pong"}, environment);
    bench::Child_process const ping({"ddsperf", "-D", "4", "ping"}, environment);
    auto const output = output_of(ping);
    pong.signal(SIGTERM);
    output_of(pong);
    // One line a second: "... size 12 mean 5.8us min 4.7us 50% 5.0us 90% ..."; the last second counts.
    std::regex const median(R"( 50% ([0-9.]+)us)");
    std::optional<double> half;
    for (std::sregex_iterator match(output.begin(), output.end(), median), end; match != end; ++match) {
        half = std::stod((*match)[1]);
    }
    return half ? std::optional(2 * *half) : std::nullopt;
}

}  // namespace benchmarks
