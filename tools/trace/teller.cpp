#include "tools/trace/teller.h"

#include "tools/trace/cause.h"
#include "tools/trace/message_words.h"

#include <algorithm>
#include <utility>

namespace statectl::trace {

namespace {

using dlt::Message;

constexpr double k_second = 1;
constexpr int k_warning = 3;
constexpr char const* k_first_words = "Configuration for hostname: ";

}  // namespace

// Ticks count 32 bits of tenths of a millisecond: they begin anew after five days. Messages of two threads may stand in
// the other order, also around that moment.
double Teller::time_of(Message const& message) {
    constexpr double k_ticks = 10'000;
    constexpr double k_us = 1'000'000;
    constexpr std::uint32_t k_half = 0x8000'0000U;
    if (!message.ticks) {
        return message.stored_us ? static_cast<double>(*message.stored_us) / k_us : now_;
    }
    auto const time = [&](auto wraps) {
        return (static_cast<double>(wraps) * 4294967296.0 + static_cast<double>(*message.ticks)) / k_ticks;
    };
    if (wraps_ > 0 && *message.ticks > newest_ticks_ && *message.ticks - newest_ticks_ > k_half) {
        return time(wraps_ - 1);
    }
    if (*message.ticks < newest_ticks_ && newest_ticks_ - *message.ticks > k_half) {
        ++wraps_;
    }
    newest_ticks_ = *message.ticks;
    return time(wraps_);
}

bool Teller::begins_life(Message const& message, double time) const {
    if (!telling_) {
        return true;
    }
    auto const& life = telling_->life;
    bool const is_other_process = life.process && message.session && *life.process != *message.session;
    return is_other_process || (says(message, k_first_words) && life.messages > 0) || time < now_ - k_second;
}

void Teller::begin_life(Message const& message) {
    end_life(false);
    wraps_ = 0;
    newest_ticks_ = 0;
    now_ = time_of(message);
    telling_.emplace();
    auto& life = telling_->life;
    life.ecu = message.ecu;
    life.process = message.session;
    life.stored_us = message.stored_us;
    life.begin = now_;
    life.has_start = says(message, k_first_words) || says(message, "Parsing configuration file:");
}

void Teller::hear(Message const& message) {
    auto const time = time_of(message);
    if (begins_life(message, time)) {
        begin_life(message);
    } else {
        now_ = std::max(now_, time);
    }
    auto& life = telling_->life;
    ++life.messages;
    life.end = now_;
    // Closing the devices fails for each that is not there: it always does.
    if (message.level != 0 && message.level <= k_warning && !says(message, "Failed to close event file descriptor! ")) {
        life.troubles.push_back({now_, text_of(message)});
    }
    understand(message);
}

void Teller::understand(Message const& message) {
    auto& telling = *telling_;
    static_cast<void>(tells_states(message) || tells_commands(message) || telling.requests.hear(message, now_) ||
                      telling.holds.hear(message, now_) || tells_end(message));
}

bool Teller::tells_states(Message const& message) {
    if (says(message, "AP_StateManger transition from")) {
        change_state(argument(message, 1), argument(message, 3));
        return true;
    }
    if (says(message, "Entering startup state")) {
        telling_->life.stays.push_back({"Starting up", now_, std::nullopt, "start"});
        return true;
    }
    if (says(message, "NM usage is disabled")) {
        telling_->uses_network = false;
        return true;
    }
    return false;
}

void Teller::change_state(std::string const& from, std::string const& to) {
    auto& telling = *telling_;
    auto& stays = telling.life.stays;
    if (stays.empty()) {
        stays.push_back({from, telling.life.begin, std::nullopt, "before the trace"});
    }
    stays.back().end = now_;
    Situation const situation{telling.commands.empty() ? "" : telling.commands.front(), telling.uses_network,
                              telling.holds.holders({"ECU alive"}),
                              telling.holds.holders({"communication", "car wake-up"}), telling.requests.late()};
    auto const cause = cause_of(from, to, situation);
    telling.is_cause_of_newest = cause.by_command;
    if (to == "Shutting down") {
        telling.requests.leave_sequence(now_);
    } else if (to == "PreparedSD" || from == "Resuming") {
        telling.requests.finish_sequence(now_);
    }
    stays.push_back({to, now_, std::nullopt, cause.text});
}

bool Teller::tells_commands(Message const& message) {
    auto& telling = *telling_;
    if (says(message, "New command received")) {
        auto const& command = argument(message, 1);
        if (command == "Shutdown") {
            for (auto const& waiting : telling.commands) {
                telling.life.dropped.push_back({now_, waiting + ": Shutdown overtook it"});
            }
            telling.commands.clear();
        }
        telling.commands.push_back(command);
        return true;
    }
    if (says(message, "Consumed VirtIO command: ")) {
        consume();
        return true;
    }
    return false;
}

void Teller::consume() {
    auto& telling = *telling_;
    if (telling.commands.empty()) {
        return;
    }
    if (!telling.is_cause_of_newest && !telling.life.stays.empty()) {
        telling.life.dropped.push_back({now_, telling.commands.front() + ": the transition to " +
                                                  telling.life.stays.back().state + " took it along"});
    }
    telling.commands.pop_front();
    telling.is_cause_of_newest = false;
}

// The first reason counts: a machine that goes down stops its services.
bool Teller::tells_end(Message const& message) {
    auto& telling = *telling_;
    auto const leave = [&](char const* farewell) {
        telling.farewell = telling.farewell.empty() ? farewell : telling.farewell;
    };
    auto const& first = argument(message, 0);
    if (first == "SIGTERM received!") {
        leave("was stopped");
    } else if (first == "Normal shutdown executed") {
        leave("went down");
    } else if (first == "Fast shutdown executed") {
        leave("was powered off the fast way");
    } else if (first == "AP_StateManger reporting kTerminating to EM" ||
               first == "AP_StateManger daemon shutting down") {
        telling.said_goodbye = true;
    } else if (first == "Failed to initialize AP_StateManger!" ||
               first.find("AP_StateManger is aborted") != std::string::npos) {
        leave("did not start");
    } else if (first.rfind("RequestDiagnosticRestart for ", 0) == 0) {
        telling.life.requests.push_back({now_, first});
    } else {
        return false;
    }
    return true;
}

void Teller::end_life(bool is_last) {
    if (!telling_) {
        return;
    }
    auto& life = telling_->life;
    for (auto const& command : telling_->commands) {
        life.dropped.push_back({now_, command + ": no state acted on it"});
    }
    auto const& farewell = telling_->farewell;
    auto const state = life.stays.empty() ? std::string() : " in " + life.stays.back().state;
    bool const has_gone = farewell == "did not start" || farewell == "was powered off the fast way";
    if (telling_->said_goodbye || has_gone) {
        life.ending = farewell.empty() ? "ended in order" : farewell;
    } else {
        life.is_orderly = is_last;
        life.ending = is_last ? "the trace ends" + state : "ended without farewell" + state;
    }
    life.sequences = telling_->requests.sequences();
    life.clients = telling_->requests.accounts();
    life.holds = telling_->holds.all();
    lives_.push_back(std::move(life));
    telling_.reset();
}

std::vector<Life> Teller::end() {
    end_life(true);
    return std::exchange(lives_, {});
}

}  // namespace statectl::trace
