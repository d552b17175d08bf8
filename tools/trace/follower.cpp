#include "tools/trace/follower.h"

#include "tools/page/words.h"
#include "tools/time_text.h"
#include "tools/trace/message_words.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace statectl::trace {

namespace {

std::string moment(dlt::Message const& message, double time) {
    if (message.stored_us) {
        return time_text(std::chrono::system_clock::time_point(std::chrono::microseconds(*message.stored_us)));
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "+%.3f", time);
    return text.data();
}

std::string line(std::string const& time, std::string const& ecu, std::string const& what) {
    return time + "  " + shown((ecu.empty() ? "" : ecu + "  ") + what) + '\n';
}

}  // namespace

std::string Follower::hear(dlt::Message const& message) {
    std::string lines;
    if (!is_of_state_manager(message)) {
        return lines;
    }
    auto& machine = machines_[message.ecu];
    machine.teller.hear(message);
    auto const tell_stays = [&](Life const& life) {
        for (; machine.stays < life.stays.size(); ++machine.stays) {
            auto const& stay = life.stays[machine.stays];
            lines += line(moment(message, stay.begin), message.ecu, stay.state + ": " + stay.cause);
        }
    };
    for (auto const& ended = machine.teller.ended(); machine.lives < ended.size(); ++machine.lives) {
        auto const& life = ended[machine.lives];
        tell_stays(life);
        lines += line(moment(message, life.end), message.ecu, "end of a life: " + life.ending);
        machine.stays = 0;
    }
    if (auto const* const life = machine.teller.current()) {
        tell_stays(*life);
    }
    return lines;
}

}  // namespace statectl::trace
