#include "bench/vm/account.h"

#include "bench/json_lines/clock.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace bench::vm {

using vehicle::Kind;
using vehicle::Timeline;

namespace {

Timeline events_of(Kind kind, std::vector<std::string> words) {
    Timeline events;
    for (auto& word : words) {
        events.push_back({monotonic_ns(), kind, std::move(word)});
    }
    return events;
}

}  // namespace

Timeline Account::hear_state(std::string_view bytes) {
    return events_of(Kind::state_word, state_words_.add(bytes));
}

Timeline Account::hear_restart(std::string_view bytes) {
    return events_of(Kind::restart_word, restart_words_.add(bytes));
}

Timeline Account::hear_power_off(std::string_view bytes) {
    constexpr std::string_view command = "Command: ";
    power_off_lines_.add(bytes);
    std::vector<std::string> commands;
    while (auto const line = power_off_lines_.next()) {
        if (line->rfind(command, 0) == 0) {
            commands.push_back(line->substr(command.size()));
        }
    }
    return events_of(Kind::power_off, std::move(commands));
}

Timeline Account::hear_log(std::string_view bytes) {
    auto messages = log_.add(bytes);
    for (auto& message : messages) {
        message.time = to_host_time(message.time);
    }
    return messages;
}

Timeline Account::hear_journal(std::string_view bytes, Players& players) {
    Timeline events;
    for (auto& entry : entries_.add(bytes)) {
        if (auto event = to_event(entry)) {
            event->time = to_host_time(event->time);
            events.push_back(std::move(*event));
        }
        auto told = players.hear(entry, [this](std::int64_t time) { return to_host_time(time); });
        std::move(told.begin(), told.end(), std::back_inserter(events));
        journal_.push_back(std::move(entry));
    }
    return events;
}

// Nothing arrives before it was sent, so the shortest way seen so far is nearest to the difference of the clocks.
std::int64_t Account::to_host_time(std::int64_t machine_time) {
    clock_offset_ = std::min(clock_offset_, monotonic_ns() - machine_time);
    return machine_time + clock_offset_;
}

}  // namespace bench::vm
