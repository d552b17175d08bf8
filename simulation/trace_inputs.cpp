#include "simulation/trace_inputs.h"

#include "simulation/trace_neighbours.h"
#include "simulation/trace_words.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace simulation {

using dlt::Message;

Trace_inputs::Trace_inputs(Trace_life const& trace, Life& life, Trace_steps& steps)
    : trace_(trace), life_(life), steps_(steps) {}

void Trace_inputs::press(Message const& message) {
    life_.hypervisor().key_down(key_of(argument(message, 1)));
}

void Trace_inputs::settle() {
    life_.events().run_until(life_.events().now(), [] { return false; });
}

Time Trace_inputs::time_of(Message const& message) const {
    auto const ticks = message.ticks.value_or(0) - trace_.front().ticks.value_or(0);
    return std::chrono::microseconds(100) * ticks;
}

bool Trace_inputs::is_before_the_driver(std::size_t place) const {
    auto const begin = std::find_if(trace_.begin(), trace_.end(), [](Message const& message) {
        return says(message, "AP_StateManger daemon started");
    });
    return begin - trace_.begin() > static_cast<std::ptrdiff_t>(place);
}

std::vector<std::size_t> Trace_inputs::held_back() {
    return has_network_ ? std::exchange(held_, {}) : std::vector<std::size_t>();
}

void Trace_inputs::apply(std::size_t place, bool is_in_time) {
    auto const& message = trace_[place];
    applied_.insert(place);
    if (says(message, "SIGTERM received!")) {
        stop(is_in_time);
    } else if (says(message, "calling callback")) {
        answer(place);
    } else if (says(message, "Received ") && family_of(text_of(message)) == Family::server) {
        complete(place);
    } else if (!apply_network(message) && !apply_application(message, life_.applications())) {
        apply_client(message, life_.clients());
    }
    settle();
}

bool Trace_inputs::apply_network(Message const& message) {
    if (ends_search(message)) {
        offer();
        return true;
    }
    if (says(message, "We received the notification")) {
        life_.network().tell(bits_of(argument(message, 1)));
        return true;
    }
    return false;
}

// The search, the subscription and the first user data take several threads' turns, and in the end the network counts
// as there: all at once here, at that end. Who subscribes is told the state at once.
void Trace_inputs::offer() {
    for (auto const& message : trace_) {
        if (says(message, "We received the notification")) {
            life_.network().tell(bits_of(argument(message, 1)));
            break;
        }
    }
    life_.network().offer();
    has_network_ = true;
    bool is_first = true;  // of the states that were told meanwhile
    for (auto const place : held_) {
        if (says(trace_[place], "We received the notification") && !std::exchange(is_first, false)) {
            life_.network().tell(bits_of(argument(trace_[place], 1)));
            settle();
        }
        applied_.insert(place);
    }
}

// The results stand behind it, a client a line; who is late has a result as well.
void Trace_inputs::answer(std::size_t place) {
    constexpr auto k_patience = std::chrono::seconds(1);
    std::vector<std::string> names;
    for (auto next = place + 1; next < trace_.size() && !says(trace_[next], "calling callback"); ++next) {
        if (says(trace_[next], "State notification client [")) {
            names.push_back(argument(trace_[next], 1));
            life_.clients().behave(names.back(), {answer_of(argument(trace_[next], 2))});
        }
    }
    settle();
    for (auto const& name : names) {
        life_.clients().behave(name, {Client_manner::Answer::silent});
    }
    auto const& expected = steps_.of(Family::server);
    auto const is_told = [&] {
        return std::any_of(expected.begin(), expected.end(),
                           [](std::string const& line) { return line.rfind("calling callback", 0) == 0; });
    };
    if (!is_told()) {
        life_.events().run_until(std::max(life_.events().now(), time_of(trace_[place]) + k_patience), is_told);
    }
}

// The server's thread tells of it under a mutex that the driver takes as well.
void Trace_inputs::complete(std::size_t place) {
    auto before = place;
    while (before > 0 && family_of(text_of(trace_[before - 1])) != Family::server) {
        --before;
    }
    if (before > 0 && says(trace_[before - 1], "calling callback") && applied_.count(before - 1) == 0) {
        applied_.insert(before - 1);
        answer(before - 1);
        settle();
    }
    life_.clients().let_completions();
}

void Trace_inputs::stop(bool is_in_time) {
    if (is_in_time) {
        life_.terminate();
    } else {
        steps_.expect(Family::signal, "Shutting down AP_StateManger");
    }
}

}  // namespace simulation
