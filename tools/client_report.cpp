#include "tools/client_report.h"

#include "tools/json_text.h"
#include "tools/page/words.h"
#include "tools/time_text.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace statectl {

namespace {

using nlohmann::json;

std::string now() {
    return time_text(std::chrono::system_clock::now());
}

void print(std::string const& line) {
    std::printf("%s  %s\n", now().c_str(), line.c_str());
    std::fflush(stdout);
}

void print(json event) {
    event["time"] = now();
    std::puts(json_text(event).c_str());
    std::fflush(stdout);
}

std::string describe(std::uint32_t status) {
    static constexpr std::array<char const*, 4> texts{"succeeded", "general error", "invalid", "timed out"};
    return status < texts.size() ? texts.at(status) : "status " + std::to_string(status);
}

}  // namespace

void Client_report::connected(std::string const& name, std::string const& state) const {
    if (as_json_) {
        print(json{{"event", "connected"}, {"name", name}, {"state", state}});
    } else {
        print("connected as " + shown(name) + ", state " + shown(state));
    }
}

void Client_report::disconnected() const {
    if (as_json_) {
        print(json{{"event", "disconnected"}});
    } else {
        print(std::string("connection lost; waiting for the state manager"));
    }
}

void Client_report::requested(std::uint32_t number, std::string const& state) const {
    if (as_json_) {
        print(json{{"event", "request"}, {"number", number}, {"state", state}});
    } else {
        print("request " + std::to_string(number) + ": " + shown(state));
    }
}

void Client_report::answered(std::uint32_t number, std::string const& state, std::uint32_t status,
                             std::chrono::milliseconds after, bool sent) const {
    if (as_json_) {
        print(json{{"event", "answer"},
                   {"number", number},
                   {"state", state},
                   {"status", status},
                   {"after_ms", after.count()},
                   {"sent", sent}});
    } else {
        print("answer " + std::to_string(number) + ": " + describe(status) + ", state " + shown(state) + ", after " +
              std::to_string(after.count()) + " ms" + (sent ? "" : " (not sent: nobody waits for it any more)"));
    }
}

void Client_report::trouble(std::string const& text) const {
    if (as_json_) {
        print(json{{"event", "trouble"}, {"text", text}});
    } else {
        print("trouble: " + shown(text));
    }
}

}  // namespace statectl
