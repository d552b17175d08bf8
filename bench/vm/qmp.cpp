#include "bench/vm/qmp.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include <poll.h>

namespace bench::vm {

namespace {

constexpr std::chrono::seconds k_patience_for_qmp{10};
constexpr int k_poll_ms = 100;

}  // namespace

Qmp::Qmp(std::string const& path) : port_(path) {
    execute("qmp_capabilities");
}

nlohmann::json Qmp::execute(std::string const& command, nlohmann::json const& arguments) {
    port_.send(nlohmann::json{{"execute", command}, {"arguments", arguments}}.dump() + "\n");
    auto answer = await_answer();
    if (answer.contains("error")) {
        throw std::runtime_error(command + ": " + answer["error"].value("desc", "refused"));
    }
    return answer["return"];
}

nlohmann::json Qmp::await_answer() {
    auto const deadline = std::chrono::steady_clock::now() + k_patience_for_qmp;
    for (;;) {
        read();
        if (!answers_.empty()) {
            auto answer = std::move(answers_.front());
            answers_.erase(answers_.begin());
            return answer;
        }
        if (!port_.is_open() || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("The emulator does not answer");
        }
        pollfd source{port_.descriptor(), POLLIN, 0};
        ::poll(&source, 1, k_poll_ms);
    }
}

std::vector<std::string> Qmp::take_events() {
    read();
    return std::exchange(events_, {});
}

void Qmp::read() {
    using nlohmann::literals::operator""_json_pointer;
    lines_.add(port_.take());
    while (auto const line = lines_.next()) {
        auto message = nlohmann::json::parse(*line, nullptr, false);
        if (message.contains("event")) {
            auto const reason = message.value("/data/reason"_json_pointer, std::string());
            events_.push_back(message["event"].get<std::string>() + (reason.empty() ? "" : " " + reason));
        } else if (message.contains("return") || message.contains("error")) {
            answers_.push_back(std::move(message));
        }
    }
}

}  // namespace bench::vm
