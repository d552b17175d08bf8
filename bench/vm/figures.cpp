#include "bench/vm/figures.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace bench::vm {

using vehicle::Kind;

namespace {

constexpr int k_boots = 5;
constexpr std::chrono::seconds k_rest{30};
constexpr double k_ticks_per_second = 100;  // of /proc/PID/stat

using Times = std::vector<double>;

double median(Times times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void print(char const* what, Times const& times, char const* unit) {
    std::printf("%-46s median %8.2f %s  (", what, median(times), unit);
    for (auto const time : times) {
        std::printf(" %.2f", time);
    }
    std::puts(" )");
}

// Seconds of the machine's clock at which an event came; nothing when it did not.
std::optional<double> time_of(Virtual_machine& machine, Kind kind, std::string const& text, std::size_t from) {
    auto const position = machine.await(kind, text, from, Virtual_machine::k_boot_patience);
    if (!position) {
        std::printf("not seen: %s\n", text.c_str());
        return std::nullopt;
    }
    return static_cast<double>(machine.machine_time(machine.events()[*position].time)) / 1e9;
}

struct Boots {
    Times first_word{};
    Times running{};
    Times machine_state{};

    bool add(Virtual_machine& machine) {
        auto const from = machine.events().size();
        machine.start_daemon();
        auto const word = time_of(machine, Kind::state_word, "startingup", from);
        auto const run = time_of(machine, Kind::state_word, "running", from);
        auto const state = time_of(machine, Kind::machine_state, "Running", from);
        if (!word || !run || !state) {
            return false;
        }
        first_word.push_back(*word);
        running.push_back(*run);
        machine_state.push_back(*state);
        return true;
    }
};

std::string pid_of_daemon(Virtual_machine& machine) {
    auto output = machine.shell().run("systemctl show --value -p MainPID ap_statemanager.service").output;
    output.erase(output.find_last_not_of('\n') + 1);
    return output;
}

// Fields 14 and 15: what the process spent in user mode and in the kernel.
double processor_seconds(Virtual_machine& machine, std::string const& pid) {
    std::istringstream fields(machine.shell().run("cat /proc/" + pid + "/stat").output);
    std::vector<std::string> const words{std::istream_iterator<std::string>(fields), {}};
    return (std::stod(words.at(13)) + std::stod(words.at(14))) / k_ticks_per_second;
}

void print_rest(Virtual_machine& machine) {
    machine.watch(std::chrono::seconds(5));  // what a boot leaves to be done
    auto const pid = pid_of_daemon(machine);
    auto const before = processor_seconds(machine, pid);
    machine.watch(k_rest);
    auto const spent = processor_seconds(machine, pid) - before;
    std::printf("%-46s %.2f s of %lld s\n", "processor time of the daemon at rest", spent,
                static_cast<long long>(k_rest.count()));
    // What is there is memory; the machine's file system lies in memory, too.
    std::printf("memory of the daemon at rest:\n%s",
                machine.shell().run("grep -e ^Rss -e ^Pss: -e ^Private /proc/" + pid + "/smaps_rollup").output.c_str());
    std::printf("its threads: %s", machine.shell().run("ls /proc/" + pid + "/task | wc -l").output.c_str());
    std::printf("memory of the machine:\n%s", machine.shell().run("free -m").output.c_str());
}

bool switch_off(Virtual_machine& machine) {
    machine.press("power");
    return machine.await_power_off(Virtual_machine::k_boot_patience);
}

}  // namespace

bool print_figures(Virtual_machine& machine) {
    Boots boots;
    for (int boot = 0; boot < k_boots; ++boot) {
        if (!boots.add(machine) || (boot + 1 < k_boots && !switch_off(machine))) {
            return false;
        }
    }
    std::puts("Since the machine's start, by its own clock:");
    print("first state word, \"startingup\"", boots.first_word, "s");
    print("state word \"running\"", boots.running, "s");
    print("machine state Running reached", boots.machine_state, "s");
    print_rest(machine);
    return true;
}

}  // namespace bench::vm
