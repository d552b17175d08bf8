#include "tools/record/troubles.h"

#include "tools/page/words.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace statectl::record {

namespace {

using status::Event_kind;

constexpr std::size_t k_most_remarks = 1'000;

}  // namespace

void remark(std::vector<trace::Remark>& remarks, double moment, std::string const& text) {
    if (remarks.size() < k_most_remarks) {
        remarks.push_back({moment, text});
    }
}

void note_trouble(trace::Life& cycle, Recorded_event const& event) {
    auto const key = "command \"" + command_word(event.numbers[0]) + '"';
    auto const moment = seconds(event.at);
    bool const has_failed = event.numbers[0] != 0;
    switch (static_cast<Event_kind>(event.kind)) {
        case Event_kind::key_dropped:
            return remark(cycle.dropped, moment, key + " was dropped: it is the one taken last");
        case Event_kind::key_swallowed:
            return remark(cycle.dropped, moment, key + " was done with by a transition that something else caused");
        case Event_kind::keys_cleared:
            return remark(cycle.dropped, moment, key + " and what waited behind it gave way to a power key");
        case Event_kind::client_vanished:
            return remark(cycle.troubles, moment, quoted(event.text) + " was asked, and left without an answer");
        case Event_kind::device_lost:
            return remark(cycle.troubles, moment,
                          "an input device was lost, " + std::to_string(event.numbers[0]) + " are left");
        case Event_kind::supervision_stopped:
            return remark(cycle.troubles, moment, "a report to the watchdog failed, and there were none from then on");
        case Event_kind::word:
            return has_failed ? remark(cycle.troubles, moment, "the word " + quoted(event.text) + " was not written")
                              : void();
        case Event_kind::machine_state:
            return has_failed
                       ? remark(cycle.troubles, moment, "the machine state " + quoted(event.text) + " was refused")
                       : void();
        default:
            return;
    }
}

std::string setting_text(std::int64_t by) {
    std::array<char, 64> text{};
    auto const span = static_cast<double>(by) / 1e9;
    std::snprintf(text.data(), text.size(), "the clock was set %s by %.3f s", by < 0 ? "back" : "forwards",
                  std::abs(span));
    return text.data();
}

}  // namespace statectl::record
