#include "simulation/trace_steps.h"

#include <chrono>

namespace simulation {

void Patience::begin_wait(bool is_due, Time now) {
    waits_ = is_due ? waits_ + 1 : 0;
    since_ = waits_ > 1 ? since_ : now;
    is_over_ = waits_ > 3 && now - since_ > std::chrono::seconds(1);
}

void Trace_steps::hear(Entry const& entry) {
    if (entry.kind == Kind::log) {
        auto const family = family_of(entry.what);
        if (family != Family::none) {
            expected_[family].push_back(entry.what);
        }
    }
}

bool Trace_steps::is_next(dlt::Message const& message) {
    auto const text = text_of(message);
    auto const& expected = expected_[family_of(text)];
    return !expected.empty() && is_same_line(expected.front(), text);
}

std::optional<std::string> Trace_steps::take(dlt::Message const& message) {
    auto const family = family_of(text_of(message));
    auto& expected = expected_[family];
    if (!is_next(message)) {
        return expected.empty() ? "nothing" : expected.front();
    }
    expected.pop_front();
    owed_releases_ -= family == Family::ecu_release && owed_releases_ != 0 ? 1U : 0U;
    ++count_;
    return std::nullopt;
}

// All that the driver does in a cycle it tells in that cycle.
std::optional<std::string> Trace_steps::owed_by_driver() {
    auto const& expected = expected_[Family::driver];
    return expected.empty() ? std::nullopt : std::optional(expected.front());
}

// A call that has the mutex late tells in the next cycle at last what it released.
std::optional<std::string> Trace_steps::owed_releases() {
    auto const& expected = expected_[Family::ecu_release];
    bool const is_owed = owed_releases_ != 0;
    owed_releases_ = expected.size();
    return is_owed ? std::optional(expected.front()) : std::nullopt;
}

// So has the server's thread with what is due.
std::optional<std::string> Trace_steps::owed_by_server(Clients const& clients, Time now) {
    deadline_.begin_wait(clients.deadline() && now >= *clients.deadline(), now);
    auto const& expected = expected_[Family::server];
    owed_.begin_wait(clients.has_held_completions() || !expected.empty(), now);
    if (!owed_.is_over()) {
        return std::nullopt;
    }
    return expected.empty() ? "that what clients were asked for is over" : expected.front();
}

}  // namespace simulation
