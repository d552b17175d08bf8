// The largest files that there may be at the configuration's place, each made to take long: from the path to the
// daemon's yes or no, with all that is logged on the way, and beside it the JSON library alone on the same text.

#include "ara/log/logging.h"
#include "benchmarks/machine/figures.h"
#include "statemanager/config/configuration_file.h"
#include "statemanager/config/document_bounds.h"
#include "statemanager/config/state_manager_json_parser.h"

#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

namespace {

using benchmarks::Samples;
using ximo::ap::statemanager::config::Configuration_file;
using ximo::ap::statemanager::config::k_most_values;
using ximo::ap::statemanager::config::State_manager_config;
using ximo::ap::statemanager::config::State_manager_json_parser;

constexpr int k_rounds = 5;
constexpr int k_short_rounds = 2;
constexpr double k_target_ms = 100.0;

constexpr char const* k_head = R"({"ap_statemanager":{"KnockOutTimer":3,"StateManagerNMUsage":true,
"RequestNetworkOnEntryRunState":true,"StateManagerMainPeriod":100,"ApplicationSuspendRequestTimeout":60,
"DMSuspendRequestTimeout":60,"PMSuspendRequestTimeout":60,"AliveSupervisionInstanceId":"","DefautNMRequestPattern":[0],
"MaxNumberOfApplicationsRequestAlive":100000,"ApplicationsRequestAliveConfig":[)";
constexpr std::size_t k_values_of_head = 20;

/// A list in its place in the configuration, as long as the bounds of values and bytes allow.
std::string list_of(std::string const& element, std::size_t values) {
    std::string text = k_head;
    std::string const tail = element + "]}}";
    for (auto left = k_most_values - k_values_of_head; left >= 2 * values; left -= values) {
        if (text.size() + element.size() + 1 + tail.size() > Configuration_file::k_largest) {
            break;
        }
        text += element + ',';
    }
    return text + tail;
}

/// As many bytes as a file may have.
std::string filled(std::string const& unit) {
    std::string text = "[";
    while (text.size() + unit.size() < Configuration_file::k_largest) {
        text += unit;
    }
    return text;
}

std::map<std::string, std::string> files() {
    return {{"empty objects, as many as fit the file", filled("{},")},
            {"numbers, as many as fit the file", filled("1,")},
            {"members, as many as fit the file", filled("{\"\":0},")},
            {"brackets", filled("[")},
            {"one number", filled("1") + ']'},
            {"one string", list_of('"' + filled("a").substr(2000) + '"', 1)},
            {"one string of escapes", list_of('"' + filled("\\u0001").substr(2000) + '"', 1)},
            {"blanks", filled(" ")},
            {"instances", list_of(R"({"EcuAliveInterfaceInstance":"abcdefghijklmnopqrst"})", 2)},
            {"instances without a name", list_of("{}", 2)},
            {"instances with a number", list_of(R"({"EcuAliveInterfaceInstance":1})", 2)},
            {"numbers instead of instances", list_of("1", 1)},
            {"lists instead of instances", list_of("[[[[[[1]]]]]]", 8)}};
}

std::string written(std::string const& content) {
    int const descriptor = ::memfd_create("configuration", 0);
    if (::write(descriptor, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
        throw std::runtime_error("file can't be written");
    }
    return "/proc/self/fd/" + std::to_string(descriptor);  // open until the end of the program
}

void parse_alone(std::string const& text) {
    try {
        benchmark::DoNotOptimize(nlohmann::json::parse(text));
    } catch (nlohmann::json::exception const&) {
        benchmark::ClobberMemory();
    }
}

void read_as_daemon(std::string const& path) {
    State_manager_config configuration;
    benchmark::DoNotOptimize(State_manager_json_parser::parse(path, configuration));
}

// Processor time of this thread alone: the log's writer has its own.
std::int64_t processor_ns() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

template <class Action>
void register_benchmark(std::string const& name, Samples& samples, Action action) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&samples, action](benchmark::State& state) {
                                     for (auto _ : state) {
                                         auto const start = processor_ns();
                                         action();
                                         auto const duration = processor_ns() - start;
                                         samples.add(duration);
                                         state.SetIterationTime(static_cast<double>(duration) / 1e9);
                                     }
                                 })
        ->Iterations(benchmarks::whole_or_short(k_rounds, k_short_rounds))
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

void tell_all(std::map<std::string, Samples> const& of_daemon, std::map<std::string, Samples> const& of_library) {
    for (auto const& [name, samples] : of_daemon) {
        if (samples.count() > 0) {
            benchmarks::tell({"file of 1 MiB: " + name, samples.median_us() / 1000.0,
                              of_library.at(name).median_us() / 1000.0, "ms", benchmarks::at_most(k_target_ms)});
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    ara::log::InitLogging("BNCH", "benchmark", ara::log::LogLevel::kVerbose, ara::log::LogMode::kRemote, "");
    std::map<std::string, Samples> of_daemon;
    std::map<std::string, Samples> of_library;
    for (auto const& [name, text] : files()) {
        register_benchmark(name + "/daemon", of_daemon[name], [path = written(text)] { read_as_daemon(path); });
        register_benchmark(name + "/library", of_library[name], [content = text] { parse_alone(content); });
    }
    benchmark::RunSpecifiedBenchmarks();
    tell_all(of_daemon, of_library);
    return EXIT_SUCCESS;
}
