#include "benchmarks/machine/machine.h"

#include "bench/vehicle/world.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>

namespace benchmarks {

namespace {

bench::vehicle::Options options(unsigned period_ms) {
    auto configuration = nlohmann::json::parse(std::ifstream(PROJECT "/deploy/config/ap_statemanager.json"));
    auto& values = configuration["ap_statemanager"];
    values["StateManagerMainPeriod"] = period_ms;
    values["StateManagerNMUsage"] = false;
    bench::vehicle::Options result;
    result.programs = PROGRAMS;
    result.configuration = configuration.dump();
    result.clients.clear();  // figures of the daemon alone
    return result;
}

}  // namespace

Machine::Machine(unsigned period_ms) : vehicle_(options(period_ms)) {}

std::unique_ptr<bench::Child_process> Machine::start(std::vector<std::string> const& words) {
    return std::make_unique<bench::Child_process>(
        words, std::vector<std::string>{"DBUS_SYSTEM_BUS_ADDRESS=" + vehicle_.bus().address(),
                                        "NOTIFY_SOCKET=/run/notify", "WATCHDOG_USEC=2000000"});
}

std::unique_ptr<bench::Child_process> Machine::start_daemon() {
    return start({PROGRAMS "/src/main/ap_statemanager"});
}

std::int64_t Machine::await_word(std::string const& word, std::size_t from) {
    return hypervisor().await_event("write", {{"file", "set_status"}, {"text", word}}, from)["t"];
}

int run_in_world(char const* program, std::function<int()> const& benchmark) {
    try {
        return bench::vehicle::run_inside(PROJECT, [&] {
            int const status = benchmark();
            std::fflush(stdout);  // the process in there ends without it
            return status;
        });
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return EXIT_FAILURE;
    }
}

}  // namespace benchmarks
