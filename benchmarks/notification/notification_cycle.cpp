// One request to 1, 10, 100 and 1000 clients, from the call to its completion: the notification server, and beside it
// in the same run a bare loop that polls, sends and receives the same bytes over the same kind of sockets. Both have
// clients of their own that are alike. A cycle of one and a cycle of the other take turns.

#include "answering_clients.h"
#include "bare_loop.h"
#include "benchmarks/machine/figures.h"
#include "client_state_notifier/client_states_impl.h"
#include "utilities/files.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <vector>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

namespace {

using benchmarks::Answering_clients;
using benchmarks::Samples;
using Clock = std::chrono::steady_clock;

constexpr double k_target_ratio = 1.15;
constexpr double k_target_p99_ratio = 1.3;
constexpr double k_allowed_growth = 0.1;  // of the ratio, from ten clients to a thousand: what differs between two runs

/// Raised by one thread, awaited by another.
class Signal {
 public:
    void raise() {
        std::lock_guard<std::mutex> const lock(mutex_);
        raised_ = true;
        changed_.notify_one();
    }
    void await() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return raised_; });
        raised_ = false;
    }

 private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool raised_{false};
};

/// The server, the bare loop, and the clients of both.
class Contest {
 public:
    explicit Contest(std::size_t clients)
        : bare_(path("bare"), clients), of_server_(path("server"), clients), of_bare_(path("bare"), clients) {
        while (server_.get_connected_clients().size() < clients || !bare_.is_complete()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    Clock::duration cycle_of_server() {
        auto const start = Clock::now();
        server_.request_state_change(
            Answering_clients::k_state, [](auto const& /*name*/) { return true; },
            [this](auto status, auto const& /*results*/) {
                failures_ += status == client_state_notifier::Callback_status::succeeded ? 0 : 1;
                done_.raise();
            },
            std::chrono::seconds(60));
        done_.await();
        return Clock::now() - start;
    }

    Clock::duration cycle_of_bare_loop() {
        auto const start = Clock::now();
        bare_.request([this] { done_.raise(); });
        done_.await();
        return Clock::now() - start;
    }

    bool failed() const { return failures_ > 0; }

 private:
    static std::string path(char const* name) { return utilities::get_static_tmp_dir() + "/" + name; }

    Signal done_;
    std::atomic<int> failures_{0};
    client_state_notifier::Client_states_impl server_{"kOn", nullptr, path("server")};
    benchmarks::Bare_loop bare_;
    Answering_clients of_server_;
    Answering_clients of_bare_;
};

/// What was measured with one number of clients.
struct Row {
    std::size_t clients;
    Samples server;
    Samples bare;
    double ratio() const { return server.median_us() / bare.median_us(); }
};

void measure(benchmark::State& state, Row& row) {
    Contest contest(row.clients);
    while (state.KeepRunning()) {
        row.bare.add(std::chrono::nanoseconds(contest.cycle_of_bare_loop()).count());
        auto const duration = contest.cycle_of_server();
        row.server.add(std::chrono::nanoseconds(duration).count());
        state.SetIterationTime(std::chrono::duration<double>(duration).count());
    }
    if (contest.failed()) {
        state.SkipWithError("a client has not answered");
    }
}

/// Both ends of all connections are in this process.
void allow_descriptors() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

void report(std::vector<Row> const& rows) {
    for (auto const& row : rows) {
        auto const clients = std::to_string(row.clients) + " clients";
        benchmarks::print("bare loop, " + clients, row.bare);
        benchmarks::print("server, " + clients, row.server);
        benchmarks::tell({"request to " + clients + ", median", row.server.median_us(), row.bare.median_us(), "us",
                          benchmarks::at_most_times(k_target_ratio)});
        benchmarks::tell({"request to " + clients + ", p99", row.server.p99_us(), row.bare.p99_us(), "us",
                          benchmarks::at_most_times(k_target_p99_ratio)});
    }
    // With one client the time is mostly that of threads waking up.
    benchmarks::tell({"request to 1000 clients beside 10, ratios of the medians", rows.at(3).ratio(),
                      rows.at(1).ratio(), "times", benchmarks::at_most_more(k_allowed_growth)});
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    allow_descriptors();
    std::vector<Row> rows{{1, {}, {}}, {10, {}, {}}, {100, {}, {}}, {1000, {}, {}}};
    for (auto& row : rows) {
        benchmark::RegisterBenchmark("notification_cycle", [&row](benchmark::State& state) { measure(state, row); })
            ->Arg(static_cast<std::int64_t>(row.clients))
            ->Iterations(row.clients < 1000 ? 1000 : 200)
            ->Repetitions(benchmarks::whole_or_short(5, 3))
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond)
            ->ReportAggregatesOnly();
    }
    benchmark::RunSpecifiedBenchmarks();
    bool const measured_all =
        std::all_of(rows.begin(), rows.end(), [](Row const& row) { return row.server.count() > 0; });
    if (measured_all) {
        report(rows);
    }
    return EXIT_SUCCESS;
}
