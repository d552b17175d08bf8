// What the status page costs the daemon's driver while nothing happens and on the way of a command, in two measures
// that bear a busy machine. First the instructions of its thread, and the system calls that it makes, with the page and
// without: these are counted, each in two lives. What the system does in its calls is not seen so; hence the processor
// time of two daemons that run beside each other, of which one has the page: without a reader, and, for
//
//     benchmark_page readers
//
// with those that a machine may have, and with one that never pauses.

#include "bench/json_lines/clock.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "status/layout.h"
#include "stepped_thread.h"
#include "tools/page/page_view.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using benchmarks::Machine;
using benchmarks::Stepped_thread;
using benchmarks::Work;

constexpr int k_cycles = 10;
constexpr double k_target_ratio = 1.02;
constexpr unsigned k_usual_period_ms = 100;
constexpr unsigned k_short_period_ms = 1;  // for many cycles in little time
constexpr int k_rounds = 3;
constexpr int k_starts = 40;
constexpr int k_suspends = 100;
constexpr std::chrono::seconds k_idle_time{2};

/// What was counted of one life.
struct Life {
    Work idle;                                            ///< a cycle in which nothing happens
    Work word;                                            ///< from a key to the word that it leads to
    Work suspend;                                         ///< from there until the machine is prepared, and has said so
    std::map<std::string, std::uint64_t> shares_of_word;  ///< of its instructions, by the file that they lie in
};

Work more(Work const& sum, Work const& other) {
    return {sum.instructions + other.instructions, sum.calls + other.calls};
}

// Of cycles that differ by what the service manager sends, the one in the middle.
Work usual(std::vector<Work> cycles) {
    std::sort(cycles.begin(), cycles.end(),
              [](Work const& left, Work const& right) { return left.instructions < right.instructions; });
    return cycles[cycles.size() / 2];
}

Life counted(Machine& machine, pid_t daemon) {
    Stepped_thread driver(daemon);
    driver.until_it_waits();
    std::vector<Work> cycles;
    for (int i = 0; i < k_cycles; ++i) {
        cycles.push_back(driver.until_it_waits());
    }
    machine.hypervisor().command({{"do", "press"}, {"key", "p"}});
    driver.take_shares();
    auto const word = driver.until_it_writes("preparing");
    auto const shares = driver.take_shares();
    auto const suspend = driver.until_it_writes("prepared4sd");
    return {usual(cycles), word, more(suspend, driver.until_it_waits()), shares};
}

// Where there is to be no page, a file is in its way.
void make_place(bool has_page) {
    namespace fs = std::filesystem;
    auto const place = fs::path(status::k_page_path).parent_path();
    fs::remove_all(place);
    if (!has_page) {
        std::ofstream(place) << "in the way";
    }
}

std::int64_t resident_kib(pid_t daemon) {
    std::int64_t pages = 0;
    std::ifstream("/proc/" + std::to_string(daemon) + "/statm") >> pages >> pages;  // the second number
    return pages * ::sysconf(_SC_PAGESIZE) / 1'024;
}

Life live(Machine& machine, bool has_page) {
    make_place(has_page);
    std::size_t const from = machine.hypervisor().position();
    auto const daemon = machine.start_daemon();
    machine.await_word("running", from);
    auto const life = counted(machine, daemon->pid());
    daemon->signal(SIGTERM);
    daemon->wait(std::chrono::seconds(20));
    return life;
}

// How long a start takes to its first word, and the memory of the daemon then, with the page and without, in turn.
void start_in_turn(Machine& machine) {
    std::array<benchmarks::Samples, 2> times;
    std::array<std::int64_t, 2> resident{};
    for (int i = 0; i < 2 * k_starts; ++i) {
        auto const with = static_cast<std::size_t>(i % 2);
        make_place(with != 0);
        auto const from = machine.hypervisor().position();
        auto const began = bench::monotonic_ns();
        auto const daemon = machine.start_daemon();
        times[with].add(machine.await_word("startingup", from) - began);
        machine.await_word("running", from);
        resident[with] = resident_kib(daemon->pid());
        daemon->signal(SIGTERM);
        daemon->wait(std::chrono::seconds(20));
    }
    benchmarks::print("start to word, without the page", times[0]);
    benchmarks::print("start to word, with the page", times[1]);
    std::printf("resident memory: %lld KiB with the page, %lld without\n", static_cast<long long>(resident[1]),
                static_cast<long long>(resident[0]));
}

using Lives = std::array<Life, 2>;

void tell(char const* name, Lives const& with, Lives const& without, Work Life::*work) {
    auto const text = [work](Lives const& lives, std::uint64_t Work::*what) {
        return std::to_string(lives[0].*work.*what) + ", " + std::to_string(lives[1].*work.*what);
    };
    std::printf("%-16s  with the page: instructions %s; system calls %s; without: %s; %s\n", name,
                text(with, &Work::instructions).c_str(), text(with, &Work::calls).c_str(),
                text(without, &Work::instructions).c_str(), text(without, &Work::calls).c_str());
}

// Two daemons on one machine, at the same time and so under the same load, of which the second one has no page, since
// the first one writes it. Where the first one has none either, their ratio tells what it is of two that are alike.
class Two_daemons {
 public:
    Two_daemons(Machine& machine, bool has_page) : machine_(machine) {
        make_place(has_page);
        for (auto& daemon : daemons_) {
            auto const from = machine.hypervisor().position();
            daemon = machine.start_daemon();
            machine.await_word("running", from);
        }
    }
    ~Two_daemons() {
        for (auto const& daemon : daemons_) {
            daemon->signal(SIGTERM);
            daemon->wait(std::chrono::seconds(20));
        }
    }
    Two_daemons(Two_daemons const&) = delete;
    Two_daemons& operator=(Two_daemons const&) = delete;

    /// Processor time of the first one's driver, user and system, as a multiple of the second one's.
    double ratio_while(std::function<void(Two_daemons&)> const& something) {
        auto const first = driver_time(*daemons_[0]);
        auto const second = driver_time(*daemons_[1]);
        something(*this);
        return static_cast<double>(driver_time(*daemons_[0]) - first) /
               static_cast<double>(driver_time(*daemons_[1]) - second);
    }

    void go_to(char const* key, char const* word) {
        auto const from = machine_.hypervisor().position();
        machine_.hypervisor().command({{"do", "press"}, {"key", key}});
        machine_.await_word(word, from);
        std::size_t words = 0;
        machine_.hypervisor().log().await(
            [&](nlohmann::json const& line) {
                words += line.value("event", "") == "write" && line.value("text", "") == word ? 1 : 0;
                return words == daemons_.size();
            },
            bench::Player::k_patience, from);
    }

 private:
    static std::int64_t driver_time(bench::Child_process const& daemon) {
        auto const pid = std::to_string(daemon.pid());
        std::int64_t running = 0;  // the first number
        std::ifstream("/proc/" + pid + "/task/" + pid + "/schedstat") >> running;
        return running;
    }

    Machine& machine_;
    std::array<std::unique_ptr<bench::Child_process>, 2> daemons_;
};

/// The value in the middle of many, and those between which the middle half of them lies.
struct Middle {
    double lower;
    double median;
    double upper;
};

Middle middle_of(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values[values.size() / 4], values[values.size() / 2], values[values.size() * 3 / 4]};
}

// Who reads the page meanwhile.
enum class Read { by_nobody, by_the_usual, all_the_time };

// Those that are told of each event: a person who watches, a script that waits, and the recorder; or one that looks and
// looks again.
class Readers {
 public:
    Readers(Machine& machine, Read read) {
        if (read == Read::by_the_usual) {
            for (auto const* const program :
                 {"/tools/ap_statectl status --watch", "/tools/ap_statectl wait --event device-lost",
                  "/tools/ap_statemanager_recorder --directory /tmp"}) {
                programs_.push_back(
                    machine.start({"/bin/sh", "-c", std::string("exec " PROGRAMS) + program + " >/dev/null"}));
            }
        } else if (read == Read::all_the_time) {
            thread_ = std::thread([this] {
                statectl::Page_view const view(status::k_page_path);
                while (!is_to_end_) {
                    view.snapshot();
                }
            });
        }
    }
    ~Readers() {
        for (auto const& program : programs_) {
            program->signal(SIGTERM);
            program->wait(std::chrono::seconds(20));
        }
        is_to_end_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    Readers(Readers const&) = delete;
    Readers& operator=(Readers const&) = delete;

 private:
    std::vector<std::unique_ptr<bench::Child_process>> programs_;
    std::thread thread_;
    std::atomic<bool> is_to_end_{false};
};

/// What two daemons differ in.
struct Pair {
    char const* name;
    bool has_page;
    Read read;
};

constexpr std::array<Pair, 4> k_pairs{{{"two without", false, Read::by_nobody},
                                       {"with the page", true, Read::by_nobody},
                                       {"and with readers", true, Read::by_the_usual},
                                       {"and read all the time", true, Read::all_the_time}}};

constexpr std::size_t k_pairs_without_readers = 2;

// Judged is the page alone.
void compare(Machine& machine, std::size_t pairs, char const* name,
             std::function<void(Two_daemons&)> const& something) {
    std::array<std::vector<double>, k_pairs.size()> ratios;
    for (int round = 0; round < k_rounds; ++round) {
        for (std::size_t i = 0; i < pairs; ++i) {
            Two_daemons daemons(machine, k_pairs[i].has_page);
            Readers const readers(machine, k_pairs[i].read);
            ratios[i].push_back(daemons.ratio_while(something));
        }
    }
    auto const what = std::string("driver with a page, processor, ") + name;
    for (std::size_t i = 0; i < pairs; ++i) {
        auto const middle = middle_of(ratios[i]);
        std::printf("%s, processor time as a multiple of a daemon's without the page, %s: %.3f (%.3f to %.3f)\n", name,
                    k_pairs[i].name, middle.median, middle.lower, middle.upper);
    }
    benchmarks::tell({what, middle_of(ratios[1]).median, 1.0, "times", benchmarks::at_most_times(k_target_ratio)});
}

void do_nothing(Two_daemons& /*daemons*/) {
    std::this_thread::sleep_for(k_idle_time);
}

void suspend_and_resume(Two_daemons& daemons) {
    for (int i = 0; i < k_suspends; ++i) {
        daemons.go_to("p", "prepared4sd");
        daemons.go_to("r", "running");
    }
}

void count() {
    Machine machine(k_usual_period_ms);
    Lives with;
    Lives without;
    for (std::size_t i = 0; i < with.size(); ++i) {
        with[i] = live(machine, true);
        without[i] = live(machine, false);
    }
    tell("idle cycle", with, without, &Life::idle);
    tell("key to word", with, without, &Life::word);
    tell("word to prepared", with, without, &Life::suspend);
    for (auto const& [file, instructions] : with[0].shares_of_word) {
        std::printf("key to word, with the page, instructions in %s: %llu\n", file.c_str(),
                    static_cast<unsigned long long>(instructions));
    }
    start_in_turn(machine);
    std::fflush(stdout);  // the rest takes minutes
}

int run(std::size_t pairs) {
    count();
    Machine machine(k_short_period_ms);
    compare(machine, pairs, "idle", do_nothing);
    compare(machine, pairs, "suspends and resumes", suspend_and_resume);
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    bool const with_readers = argc == 2 && std::string(argv[1]) == "readers";
    auto const pairs = with_readers ? k_pairs.size() : k_pairs_without_readers;
    return benchmarks::run_in_world("benchmark_page", [pairs] { return run(pairs); });
}
