#include "bench/vehicle/machine.h"

#include <stdexcept>

namespace bench::vehicle {

nlohmann::json Machine::tell(std::string const& neighbour, nlohmann::json const& /*command*/) {
    throw std::runtime_error("This machine has no neighbour \"" + neighbour + "\"");
}

void Machine::change_configuration(nlohmann::json const& /*changes*/) {
    throw std::runtime_error("The configuration of this machine stays as it is");
}

void Machine::watch(std::chrono::milliseconds duration) {
    auto const end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        update(k_poll);
    }
}

std::optional<std::size_t> Machine::await(Kind kind, std::string const& text, std::size_t from,
                                          std::chrono::milliseconds limit) {
    auto const fits = [&](Event const& event) {
        bool const is_text = kind == Kind::log ? event.text.rfind(text, 0) == 0 : event.text == text;
        return event.kind == kind && is_text;
    };
    return await(fits, from, limit);
}

std::optional<std::size_t> Machine::await(std::function<bool(Event const&)> const& fits, std::size_t from,
                                          std::chrono::milliseconds limit) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    for (auto next = from;;) {
        update(k_poll);
        for (; next < events_.size(); ++next) {
            if (fits(events_[next])) {
                return next;
            }
        }
        if (std::chrono::steady_clock::now() > deadline) {
            return std::nullopt;
        }
    }
}

}  // namespace bench::vehicle
