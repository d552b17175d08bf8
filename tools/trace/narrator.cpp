#include "tools/trace/narrator.h"

#include "tools/trace/message_words.h"
#include "tools/trace/teller.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>

namespace statectl::trace {

namespace {

using dlt::Message;

bool tells_nothing(Message const& message) {
    constexpr int k_info = 4;
    return message.level > k_info && !says(message, "State_manager::ecu_alive_release: ");
}

}  // namespace

// Of what each cycle logs the newest message tells that the process still lived; a day has two million of them.
void Narrator::hear(Message message) {
    ++count_;
    if (!is_of_state_manager(message)) {
        return;
    }
    if (tells_nothing(message)) {
        message.arguments.clear();
        bool const is_next = !messages_.empty() && tells_nothing(messages_.back()) &&
                             messages_.back().session == message.session && messages_.back().ecu == message.ecu;
        if (is_next) {
            messages_.back() = std::move(message);
            return;
        }
    }
    messages_.push_back(std::move(message));
}

Story Narrator::end(dlt::Reader const& reader) {
    // A ring has one place where time jumps back, behind its newest message.
    auto const jump =
        std::adjacent_find(messages_.begin(), messages_.end(), [](Message const& one, Message const& next) {
            constexpr std::int64_t k_us = 1'000'000;
            return one.stored_us && next.stored_us && *next.stored_us < *one.stored_us - k_us;
        });
    if (jump != messages_.end() && *messages_.back().stored_us <= *messages_.front().stored_us) {
        std::rotate(messages_.begin(), jump + 1, messages_.end());
    }
    std::map<std::string, Teller> tellers;
    for (auto const& message : messages_) {
        tellers[message.ecu].hear(message);
    }
    Story story{{}, count_, reader.skipped_bytes(), reader.is_cut()};
    for (auto& [ecu, teller] : tellers) {
        auto lives = teller.end();
        std::move(lives.begin(), lives.end(), std::back_inserter(story.lives));
    }
    std::stable_sort(story.lives.begin(), story.lives.end(), [](Life const& left, Life const& right) {
        return left.stored_us.value_or(0) < right.stored_us.value_or(0);
    });
    return story;
}

}  // namespace statectl::trace
