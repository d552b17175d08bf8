// A session is one client of the library on this thread: it waits for the next request or the time of the next answer,
// prints what comes, and ends after its number of requests or by a signal.

#include "component_client/client.h"
#include "tools/client_report.h"
#include "tools/commands.h"
#include "tools/signals.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>

#include <poll.h>

namespace statectl {

namespace {

using component_client::Answer;
using component_client::Client;
using component_client::Status;
using Clock = std::chrono::steady_clock;

struct Client_options {
    std::string name;
    component_client::Options connection;
    std::int64_t answer_after_ms{0};
    std::uint32_t status{0};
    std::uint64_t requests{0};
    bool is_silent{false};
    bool as_json{false};
};

/// One client on this thread. Answers wait in the order of their requests, which is that of their times.
class Session {
 public:
    explicit Session(Client_options const& options)
        : options_(options), report_(options.as_json), client_(options.name, handler(), connection()) {}

    int run() {
        while (!is_over()) {
            std::array<pollfd, 2> sources{{{client_.descriptor(), POLLIN, 0}, {end_.descriptor(), POLLIN, 0}}};
            if (::poll(sources.data(), sources.size(), time_left()) < 0 && errno != EINTR) {
                throw std::system_error(errno, std::generic_category(), "poll");
            }
            if (sources[1].revents != 0) {
                break;
            }
            client_.dispatch();
            answer_what_is_due();
        }
        return k_success;
    }

 private:
    struct Owed {
        Clock::time_point asked;
        Answer answer;
    };

    component_client::Request_handler handler() {
        return [this](std::string const& state, Answer answer) {
            report_.requested(answer.number(), state);
            ++requests_;
            if (options_.is_silent) {
                answer.withhold();
            } else {
                owed_.push_back({Clock::now(), std::move(answer)});
            }
        };
    }

    component_client::Options connection() {
        auto connection = options_.connection;
        connection.own_thread = false;
        connection.on_connection = [this](bool connected) {
            if (connected) {
                report_.connected(options_.name, client_.state());
            } else {
                report_.disconnected();
            }
        };
        connection.on_trouble = [this](std::string const& text) { report_.trouble(text); };
        return connection;
    }

    int time_left() const {
        if (owed_.empty()) {
            return -1;
        }
        auto const left = std::chrono::ceil<std::chrono::milliseconds>(due(owed_.front()) - Clock::now());
        return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }

    Clock::time_point due(Owed const& owed) const {
        return owed.asked + std::chrono::milliseconds(options_.answer_after_ms);
    }

    void answer_what_is_due() {
        while (!owed_.empty() && due(owed_.front()) <= Clock::now()) {
            auto& answer = owed_.front().answer;
            bool const sent = answer.send(static_cast<Status>(options_.status));
            auto const after = std::chrono::floor<std::chrono::milliseconds>(Clock::now() - owed_.front().asked);
            report_.answered(answer.number(), client_.state(), options_.status, after, sent);
            owed_.pop_front();
        }
    }

    bool is_over() const { return options_.requests != 0 && requests_ >= options_.requests && owed_.empty(); }

    Client_options options_;
    Client_report report_;
    End_signals end_;
    std::deque<Owed> owed_;
    std::uint64_t requests_{0};
    Client client_;
};

}  // namespace

void add_client_command(CLI::App& program, Action& chosen) {
    constexpr std::int64_t k_longest_ms = 86'400'000;
    constexpr std::uint64_t k_most_requests = 1'000'000'000;
    auto const options = std::make_shared<Client_options>();
    auto* const command = program.add_subcommand("client", "Take part in suspends and resumes as a client");
    command->add_option("--name", options->name, "Name of the client, e.g. diag::dcm")->required();
    command->add_option("--state", options->connection.state, "State that it announces first")->capture_default_str();
    command->add_option("--answer-after", options->answer_after_ms, "Milliseconds from a request to its answer")
        ->check(CLI::Range(std::int64_t{0}, k_longest_ms));
    command
        ->add_option("--status", options->status,
                     "Status of the answers: 0 succeeded, 1 general error, 2 invalid, 3 timed out")
        ->check(CLI::Range(0, 255));
    command->add_flag("--silent", options->is_silent, "Never answer");
    command
        ->add_option("--requests", options->requests,
                     "End after so many requests; without it, by SIGINT, SIGTERM and the like")
        ->check(CLI::Range(std::uint64_t{1}, k_most_requests));
    command->add_flag("--json", options->as_json, "One JSON object a line");
    command->add_option("--socket", options->connection.socket_path,
                        "Socket of the state manager, instead of this machine's");
    command->callback([options, &chosen] { chosen = [options] { return Session(*options).run(); }; });
}

}  // namespace statectl
