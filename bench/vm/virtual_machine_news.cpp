// What arrives from the machine.

#include "bench/json_lines/clock.h"
#include "bench/vm/running.h"

#include <algorithm>
#include <array>
#include <utility>

#include <poll.h>

namespace bench::vm {

using vehicle::Kind;

namespace {

constexpr std::chrono::seconds k_emulator_end{5};

/// How the machine ended, by the emulator's events; empty while it is on.
std::string end_in(std::vector<std::string> const& events) {
    auto const end = std::find_if(events.begin(), events.end(),
                                  [](std::string const& event) { return event.rfind("SHUTDOWN", 0) == 0; });
    if (end == events.end()) {
        return "";
    }
    return *end == "SHUTDOWN guest-shutdown" ? Virtual_machine::k_power_off
           : *end == "SHUTDOWN guest-reset"  ? "reset"
                                             : "switched off from outside";
}

}  // namespace

void Virtual_machine::update(std::chrono::milliseconds limit) {
    if (!running_) {
        ::poll(nullptr, 0, static_cast<int>(limit.count()));
        return;
    }
    std::array<pollfd, 5> sources{{{running_->log.descriptor(), POLLIN, 0},
                                   {running_->state.descriptor(), POLLIN, 0},
                                   {running_->restart.descriptor(), POLLIN, 0},
                                   {running_->journal.descriptor(), POLLIN, 0},
                                   {running_->control.descriptor(), POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), static_cast<int>(limit.count()));
    take_news();
    take_end();
}

void Virtual_machine::take_news() {
    take_words();
    take_log();
    take_journal();
}

void Virtual_machine::take_words() {
    for (auto& word : running_->state_words.add(running_->state.take())) {
        add({monotonic_ns(), Kind::state_word, std::move(word)});
    }
    for (auto& word : running_->restart_words.add(running_->restart.take())) {
        add({monotonic_ns(), Kind::restart_word, std::move(word)});
    }
}

void Virtual_machine::take_log() {
    for (auto& message : running_->log_stream.add(running_->log.take())) {
        message.time = to_host_time(message.time);
        add(std::move(message));
    }
}

void Virtual_machine::take_journal() {
    for (auto& entry : running_->entries.add(running_->journal.take())) {
        if (auto event = to_event(entry)) {
            event->time = to_host_time(event->time);
            add(std::move(*event));
        }
        for (auto& event : players_.take(entry, [this](std::int64_t time) { return to_host_time(time); })) {
            add(std::move(event));
        }
        journal_.push_back(std::move(entry));
    }
}

void Virtual_machine::take_end() {
    end_ = end_in(running_->control.take_events());
    if (end_.empty() && running_->control.is_open()) {
        return;
    }
    end_ = end_.empty() ? "the emulator is gone" : end_;
    running_->emulator.wait(k_emulator_end);
    running_.reset();
    players_.begin();
    add({monotonic_ns(), Kind::ended, end_});
}

// Nothing arrives before it was sent, so the shortest way seen so far is nearest to the difference of the clocks.
std::int64_t Virtual_machine::to_host_time(std::int64_t machine_time) {
    clock_offset_ = std::min(clock_offset_, monotonic_ns() - machine_time);
    return machine_time + clock_offset_;
}

}  // namespace bench::vm
