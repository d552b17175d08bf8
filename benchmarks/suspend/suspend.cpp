// What the machine itself adds to a suspend. Its three groups of clients are asked one after the other, and each
// answers at once; measured is the time from the answer of a group to the request to the next one, and from that of the
// last group to the word that all is prepared. A group's end is seen in the next cycle, so that the period decides;
// what a shorter one costs while nothing happens is measured beside it. The next suspend begins when all have answered
// that they are back.

#include "bench/json_lines/clock.h"
#include "benchmarks/machine/figures.h"
#include "benchmarks/machine/machine.h"
#include "process_usage.h"
#include "utilities/messages.h"
#include "utilities/protocol.h"
#include "utilities/socket.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

#include <linux/input-event-codes.h>
#include <sys/socket.h>

namespace {

using benchmarks::Machine;
using benchmarks::Samples;
using utilities::Type_length_value;

constexpr int k_suspends = 5;
constexpr int k_short_suspends = 3;
constexpr int k_idle_seconds = 5;
constexpr int k_short_idle_seconds = 2;
constexpr int k_patience_s = 30;
constexpr double k_target_ratio = 1.1;
constexpr std::array<int, 2> k_periods_ms{100, 10};

/// A client that answers each request at once, on a thread of its own.
class Prompt_client {
 public:
    explicit Prompt_client(std::string const& name) {
        socket_.try_connect(utilities::create_unix_address(utilities::get_socket_path()), stop_.first);
        utilities::send_type_length_values(socket_, {Type_length_value(utilities::get_protocol_version_one()),
                                                     Type_length_value(name), Type_length_value("kPrepSD")});
        thread_ = std::thread([this] { answer_requests(); });
    }
    ~Prompt_client() {
        ::shutdown(socket_.get_fd(), SHUT_RDWR);
        thread_.join();
    }
    Prompt_client(Prompt_client const&) = delete;
    Prompt_client& operator=(Prompt_client const&) = delete;

    std::int64_t asked_at() const { return asked_at_; }
    std::int64_t answered_at() const { return answered_at_; }
    int answers() const { return answers_; }

 private:
    void answer_requests() {
        try {
            for (;;) {
                auto const request = utilities::receive_type_length_values(socket_);
                asked_at_ = bench::monotonic_ns();
                answered_at_ = bench::monotonic_ns();
                utilities::send_type_length_values(socket_, {request.at(0), request.at(1), Type_length_value(0U)});
                ++answers_;
            }
        } catch (std::exception const&) {  // NOLINT(bugprone-empty-catch): the connection has ended
        }
    }

    std::pair<utilities::Socket, utilities::Socket> stop_{utilities::socket_pair()};
    utilities::Socket socket_{AF_UNIX, SOCK_STREAM, 0};
    std::atomic<std::int64_t> asked_at_{0};
    std::atomic<std::int64_t> answered_at_{0};
    std::atomic<int> answers_{0};
    std::thread thread_;
};

/// In the order in which they are asked to stand by.
using Clients = std::array<Prompt_client, 3>;

void await_answers(Clients const& clients, int answers) {
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(k_patience_s);
    while (
        std::any_of(clients.begin(), clients.end(), [&](auto const& client) { return client.answers() < answers; })) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("a client was not asked");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// From the answer of each group to what comes next, and all of these together.
struct Shares {
    std::array<Samples, 3> of_groups;
    Samples of_suspends;

    void add(Clients const& clients, std::int64_t prepared_at) {
        std::int64_t sum = 0;
        for (std::size_t group = 0; group < clients.size(); ++group) {
            auto const next = group + 1 < clients.size() ? clients[group + 1].asked_at() : prepared_at;
            of_groups[group].add(next - clients[group].answered_at());
            sum += next - clients[group].answered_at();
        }
        of_suspends.add(sum);
    }
};

/// How a key comes: pressed and let go, which is four records, or as one record, which ends no cycle but the one that
/// it is read in.
enum class Key { whole, one_record };

std::int64_t go(Machine& machine, Key key, std::pair<char const*, int> const& names, char const* word) {
    auto& hypervisor = machine.hypervisor();
    auto const from = hypervisor.position();
    if (key == Key::whole) {
        hypervisor.command({{"do", "press"}, {"key", names.first}});
    } else {
        hypervisor.command({{"do", "record"}, {"type", EV_KEY}, {"code", names.second}, {"value", 1}});
    }
    return machine.await_word(word, from);
}

Shares suspend_again_and_again(Machine& machine, Clients const& clients, Key key) {
    Shares shares;
    for (int suspend = 0; suspend < benchmarks::whole_or_short(k_suspends, k_short_suspends); ++suspend) {
        auto const answers = clients.front().answers();
        auto const prepared_at = go(machine, key, {"p", KEY_P}, "prepared4sd");
        shares.add(clients, prepared_at);
        go(machine, key, {"r", KEY_R}, "running");
        await_answers(clients, answers + 2);
    }
    return shares;
}

double idle_percent(pid_t daemon) {
    auto const seconds = benchmarks::whole_or_short(k_idle_seconds, k_short_idle_seconds);
    auto const before = benchmarks::usage_of(daemon);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return static_cast<double>(benchmarks::running_ns(benchmarks::usage_of(daemon) - before)) / 1e7 / seconds;
}

void tell(Shares const& shares, std::string const& at, int period_ms) {
    std::size_t group = 0;
    for (auto const* what : {"diag::dcm to applications", "applications to diag::dem", "diag::dem to prepared4sd"}) {
        benchmarks::print(what, shares.of_groups.at(group++));
    }
    benchmarks::tell({"own share of a suspend" + at + ", beside three of it", shares.of_suspends.median_us() / 1000.0,
                      3.0 * period_ms, "ms", benchmarks::at_most_times(k_target_ratio)});
}

/// Returns what the daemon takes of a core while nothing happens.
double measure(int period_ms) {
    auto const at = " at a period of " + std::to_string(period_ms) + " ms";
    Machine machine(static_cast<unsigned>(period_ms));
    auto const from = machine.hypervisor().position();
    auto const daemon = machine.start_daemon();
    machine.await_word("running", from);
    Clients const clients{Prompt_client("diag::dcm"), Prompt_client("application"), Prompt_client("diag::dem")};
    await_answers(clients, 1);  // who introduces itself in another state is asked for the present one
    tell(suspend_again_and_again(machine, clients, Key::one_record), at, period_ms);
    tell(suspend_again_and_again(machine, clients, Key::whole), at + ", key let go at once", period_ms);
    auto const idle = idle_percent(daemon->pid());
    daemon->signal(SIGTERM);
    daemon->wait(std::chrono::seconds(5));
    return idle;
}

int run() {
    double usual_percent = 0.0;
    for (int const period_ms : k_periods_ms) {
        auto const percent = measure(period_ms);
        benchmarks::tell({"idle among 3 clients at a period of " + std::to_string(period_ms) + " ms", percent,
                          usual_percent, "% of a core"});
        usual_percent = percent;
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    return benchmarks::run_in_world("benchmark_suspend", &run);
}
