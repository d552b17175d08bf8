#include "tools/page/reasons.h"

#include "base/hex.h"
#include "services/user_data_names.h"
#include "tools/page/words.h"

#include <algorithm>

namespace statectl {

namespace {

using Reasons = std::vector<Reason>;
using status::Answer;
using status::Blocked;
using status::Condition;
using status::Hold;

constexpr Number k_second = 1'000'000'000;
constexpr Number k_ecu_active = 0;
constexpr Number k_long_rest = 30 * k_second;  // a bus goes from its last message to sleep within seconds
constexpr Number k_fresh = 300 * k_second;     // a key of longer ago is no reason any more

template <class Enum>
bool is(Number number, Enum value) {
    return number == static_cast<Number>(value);
}

// A name is told with its process where another connection has the same.
std::string client_word(Snapshot const& page, status::Client<Number> const& client) {
    auto const name = text_of(client.name);
    auto const namesakes = std::count_if(page.clients.begin(), page.clients.end(),
                                         [&](auto const& other) { return text_of(other.name) == name; });
    return quoted(name) + (namesakes > 1 ? " (process " + std::to_string(client.pid) + ")" : "");
}

// What may be expected of a client that owes an answer, by those that its name owed before.
std::string usual_text(Snapshot const& page, status::Client<Number> const& client) {
    auto const* const known = record_of(page, client);
    auto const open =
        static_cast<Number>(std::count_if(page.clients.begin(), page.clients.end(), [&](auto const& other) {
            return is(other.answer, Answer::open) && record_of(page, other) == known;
        }));
    if (known == nullptr || known->asked <= open) {
        return "; was never asked before";
    }
    auto const answers = known->in_time + known->failed;
    auto const owed = known->asked - open;
    auto const text = "; of " + std::to_string(owed) + (owed == 1 ? " answer before, " : " answers before, ");
    return answers == 0
               ? text + "none came in time"
               : text + std::to_string(answers) + " came in time, after " + span_text(mean_of(*known)) + " on average";
}

Reasons held_by(Snapshot const& page, std::vector<Hold> const& holds) {
    Reasons reasons;
    for (auto const& instance : page.instances) {
        for (auto const hold : holds) {
            auto const since = instance.since[static_cast<std::size_t>(hold)];
            if (since != 0) {
                reasons.push_back({"held", quoted(text_of(instance.name)) + " holds " +
                                               hold_word(static_cast<Number>(hold)) + " since " +
                                               span_text(since, page.now)});
            }
        }
    }
    return reasons;
}

Reasons network_reasons(Snapshot const& page) {
    Reasons reasons;
    auto const bytes = bytes_of(page.network.state);
    auto const names = services::network_state_names(bytes);
    if (page.network.reports == 0) {
        reasons.push_back({"network-silent", "the network has not reported its state yet"});
    } else if (page.network.ecu_state == k_ecu_active) {
        reasons.push_back({"network-needed", "the network is needed by " + services::enumerate(names) + " (bits " +
                                                 base::to_hex(bytes) + "), as reported " +
                                                 span_text(page.network.reported_at, page.now) + " ago"});
    } else {
        auto const* const hint = page.now > page.network.reported_at + k_long_rest
                                     ? ", which a network manager that has gone never does (ap_statectl services)"
                                     : "";
        reasons.push_back({"network-at-rest-once", "the network has reported rest once, " +
                                                       span_text(page.network.reported_at, page.now) +
                                                       " ago; the ECU may sleep when it does so again" + hint});
    }
    for (auto& reason : held_by(page, {Hold::com_alive, Hold::ecu_alive, Hold::car_wake_up})) {
        reasons.push_back(std::move(reason));
    }
    return reasons;
}

Reasons ecu_reasons(Snapshot const& page) {
    auto reasons = held_by(page, {Hold::ecu_alive});
    auto const left = page.driver.knockout * page.life.period_ms * 1'000'000;
    reasons.push_back({"knock-out", "applications may keep the ECU alive for " + std::to_string(page.driver.knockout) +
                                        " cycles more, " + span_text(left) + " at most"});
    return reasons;
}

std::string open_text(Snapshot const& page, status::Client<Number> const& client) {
    auto const left = page.server.deadline > page.now ? page.server.deadline - page.now : 0;
    return client_word(page, client) + " has " + span_text(left) + " left to answer " +
           shown(text_of(page.server.mode)) + " (asked " + span_text(client.asked_at, page.now) + " ago" +
           usual_text(page, client) + ")";
}

Reasons client_reasons(Snapshot const& page) {
    Reasons reasons;
    for (auto const& client : page.clients) {
        if (page.server.in_progress != 0 && is(client.answer, Answer::open)) {
            reasons.push_back({"client-open", open_text(page, client)});
        }
    }
    if (page.server.in_progress != 0 && page.server.unanswered > reasons.size()) {
        reasons.push_back(
            {"client-vanished", std::to_string(page.server.unanswered - reasons.size()) +
                                    " of those that were asked left without an answer; their time is over in " +
                                    span_text(page.now, page.server.deadline)});
    }
    if (reasons.empty() && page.server.in_progress != 0 && page.server.clients_untold != 0) {
        reasons.push_back({"next-step", "the page has no room for all clients: one that it lacks may owe an answer"});
    } else if (reasons.empty()) {
        auto const has_asked = page.driver.group_at != 0 && page.driver.group_at >= page.driver.since;
        reasons.push_back({"next-step", (has_asked ? "all of the " + group_word(page.driver.group) +
                                                         " have answered or had their time"
                                                   : std::string("nobody has been asked yet")) +
                                            ", and the next step follows"});
    }
    return reasons;
}

Reasons state_reasons(Snapshot const& page) {
    auto const state = state_word(page.driver.state);
    switch (static_cast<Condition>(page.driver.condition)) {
        case Condition::network_manager:
            if (page.life.nm_usage == 0 || page.services.manager_found != 0) {
                return {{"next-step", "nothing is missing, and Running follows"}};
            }
            return {{"no-network-manager", "network management is used, and its services have not been found"}};
        case Condition::command:
            return {{"no-command", "the hypervisor has given no command that ends " + state}};
        case Condition::network:
            return network_reasons(page);
        case Condition::ecu_alive:
            return ecu_reasons(page);
        case Condition::clients:
            return client_reasons(page);
        case Condition::power_off:
            return {{"power-off", page.driver.forced != 0 ? "power-off was requested of the power-off service"
                                                          : "execution management was asked to shut down"}};
        case Condition::nothing:
            break;
    }
    return {{"unknown", "the page does not say what " + state + " waits for"}};
}

void add_blocked(Snapshot const& page, Reasons& reasons) {
    auto const& driver = page.driver;
    if (is(driver.blocked, Blocked::not_at_all) || driver.waiting == 0) {
        return;
    }
    auto const setting = is(driver.blocked, Blocked::by_setting);
    auto text = "the oldest command is " + quoted(command_word(driver.queue[0])) + " (" +
                span_text(driver.taken_at[0], page.now) + " ago), which " + state_word(driver.state) + " never takes" +
                (setting ? " while network management is not used" : "");
    if (driver.waiting > 1) {
        text += "; " + std::to_string(driver.waiting - 1) +
                (driver.waiting == 2 ? " command waits" : " commands wait") + " behind it";
    }
    text += is(driver.condition, Condition::command) ? "; only the power key removes it"
                                                     : "; the next transition uses it up";
    reasons.push_back({"command-blocked", text});
}

bool is_fresh(Snapshot const& page, Number time) {
    return time != 0 && page.now < time + k_fresh;
}

// What became of keys lately that have led to nothing.
void add_keys(Snapshot const& page, Reasons& reasons) {
    auto const& driver = page.driver;
    auto const add = [&](char const* code, Number command, char const* what, Number time, std::string const& why) {
        if (is_fresh(page, time)) {
            reasons.push_back({code, quoted(command_word(command)) + what + span_text(time, page.now) + " ago" + why});
        }
    };
    if (driver.last_dropped_at > driver.last_key_at) {
        add("key-dropped", driver.last_dropped, " was dropped ", driver.last_dropped_at,
            ": the key taken before it is the same");
    }
    add("key-swallowed", driver.last_swallowed, " was used up ", driver.last_swallowed_at,
        " by the transition out of " + state_word(driver.swallowed_from) +
            ", which had another cause: " + cause_text(driver.swallowed_from, driver.swallowed_row));
    add("key-cleared", driver.last_cleared, " was thrown away ", driver.last_cleared_at,
        " with all that waited: the power key overtakes");
}

std::string times_text(Number times) {
    return times == 1 ? "once" : std::to_string(times) + " times";
}

std::string farewell_text(Snapshot const& page) {
    if (page.is_foreign) {
        return "the page is from another boot or machine; this is what its daemon said last";
    }
    return std::string(page.driver.ended != 0 ? "the daemon ended in order "
                                              : "the daemon has gone without a farewell ") +
           span_text(page.silent) + " ago; this is what it said last";
}

void add_life(Snapshot const& page, Reasons& troubles) {
    auto const& driver = page.driver;
    if (!page.is_alive) {
        troubles.push_back({"not-running", farewell_text(page)});
    }
    if (page.is_half_written) {
        troubles.push_back({"half-written", "a part of the page was left half-written"});
    }
    auto const beat = driver.beat != 0 ? driver.beat : page.life.started;  // which the first cycle is still to follow
    if (page.is_alive && driver.ended == 0 && page.now > beat + k_second + page.life.period_ms * 1'000'000) {
        troubles.push_back({"no-beat", "no cycle has begun for " + span_text(beat, page.now) +
                                           ": the daemon waits for a call, or stands still"});
    }
}

void add_devices(Snapshot const& page, Reasons& troubles) {
    auto const& driver = page.driver;
    if (driver.devices == 0) {
        troubles.push_back({"no-device", "no input device is listened to: no command arrives"});
    } else if (driver.devices_lost != 0) {
        troubles.push_back({"device-lost", std::to_string(driver.devices_lost) + " of " +
                                               std::to_string(driver.devices_found) +
                                               " input devices failed, the last one " +
                                               span_text(driver.device_lost_at, page.now) + " ago"});
    }
}

void add_words(Snapshot const& page, Reasons& troubles) {
    auto const& driver = page.driver;
    if (driver.word_failed == static_cast<Number>(status::Word_fate::no_file)) {
        troubles.push_back({"word-failed",
                            "the hypervisor hears no word: its control file could not be opened at the "
                            "start, and is tried again by the daemon's next start"});
    } else if (driver.word_failed != 0) {
        troubles.push_back(
            {"word-failed", "the state word \"" + shown(text_of(driver.word)) + "\" could not be written"});
    }
    if (driver.machine_state_failed != 0) {
        troubles.push_back({"machine-state-failed", "execution management did not set the machine state " +
                                                        shown(text_of(driver.machine_state))});
    }
}

void add_calls(Snapshot const& page, Reasons& troubles) {
    std::vector<std::string> calls;
    for (std::size_t call = 0; call < status::k_network_calls; ++call) {
        if (auto const times = page.counters.failed_calls[call]; times != 0) {
            calls.push_back(call_word(call) + " " + times_text(times));
        }
    }
    if (!calls.empty()) {
        troubles.push_back({"calls-failed", "calls of network management failed: " + joined(calls) + ", the last " +
                                                span_text(page.counters.call_failed_at, page.now) + " ago"});
    }
}

void add_restarts(Snapshot const& page, Reasons& troubles) {
    auto const& counters = page.counters;
    if (counters.restarts_failed != 0) {
        troubles.push_back(
            {"restart-failed", "the word for a restart could not be written " + times_text(counters.restarts_failed)});
    }
    if (page.life.number > 1) {
        troubles.push_back({"restarted", "the daemon was restarted " + times_text(page.life.number - 1) +
                                             " since the boot, the last time " +
                                             span_text(page.life.started, page.now) + " ago"});
    }
}

}  // namespace

std::vector<Reason> reasons_of(Snapshot const& page) {
    auto reasons = state_reasons(page);
    add_blocked(page, reasons);
    if (reasons.size() > 1 && is(page.driver.condition, Condition::command)) {
        reasons.erase(reasons.begin());  // there is a command; it is the wrong one
    }
    add_keys(page, reasons);
    return reasons;
}

std::vector<Reason> troubles_of(Snapshot const& page) {
    Reasons troubles;
    add_life(page, troubles);
    add_devices(page, troubles);
    add_words(page, troubles);
    add_calls(page, troubles);
    if (page.server.failures != 0) {
        troubles.push_back({"server-failed", "the notification server failed " + times_text(page.server.failures) +
                                                 ", and all clients had to connect again"});
    }
    if (page.driver.supervision_stopped != 0) {
        troubles.push_back({"supervision-stopped", "a report to the watchdog failed " +
                                                       span_text(page.driver.supervision_stopped, page.now) +
                                                       " ago, and none follows: the watchdog ends the daemon"});
    }
    if (page.driver.log_lost != 0) {
        auto const what = page.driver.log_lost == 1 ? std::string("1 message, ")
                                                    : std::to_string(page.driver.log_lost) + " messages, the last ";
        troubles.push_back(
            {"log-lost", "the log lost " + what + span_text(page.driver.log_lost_at, page.now) + " ago"});
    }
    add_restarts(page, troubles);
    return troubles;
}

}  // namespace statectl
