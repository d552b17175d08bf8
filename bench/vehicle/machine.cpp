#include "bench/vehicle/machine.h"

namespace bench::vehicle {

namespace {

bool fits(Event const& event, Kind kind, std::string const& text) {
    if (event.kind != kind) {
        return false;
    }
    return kind == Kind::log ? event.text.rfind(text, 0) == 0 : event.text == text;
}

}  // namespace

void Machine::watch(std::chrono::milliseconds duration) {
    auto const end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        update(k_poll);
    }
}

std::optional<std::size_t> Machine::await(Kind kind, std::string const& text, std::size_t from,
                                          std::chrono::milliseconds limit) {
    auto const deadline = std::chrono::steady_clock::now() + limit;
    for (auto next = from;;) {
        update(k_poll);
        for (; next < events_.size(); ++next) {
            if (fits(events_[next], kind, text)) {
                return next;
            }
        }
        if (std::chrono::steady_clock::now() > deadline) {
            return std::nullopt;
        }
    }
}

}  // namespace bench::vehicle
