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

std::string usual_text(Snapshot const& page, status::Client<Number> const& client) {
    auto const name = text_of(client.name);
    for (auto const& known : page.names) {
        auto const answers = known.in_time + known.failed + known.late;
        if (text_of(known.name) == name && answers > 0) {
            return "; usually answers in " + span_text(known.total / answers);
        }
    }
    return "; has never answered before";
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
        reasons.push_back({"network-at-rest-once", "the network has reported rest once, " +
                                                       span_text(page.network.reported_at, page.now) +
                                                       " ago; the ECU may sleep when it does so again"});
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
    if (reasons.empty()) {
        reasons.push_back({"next-step", "all of the " + group_word(page.driver.group) +
                                            " have answered or had their time, and the next step follows"});
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
    reasons.push_back({"command-blocked", text});
}

void add_dropped(Snapshot const& page, Reasons& reasons) {
    auto const& driver = page.driver;
    if (driver.last_dropped_at > driver.last_key_at) {
        reasons.push_back({"key-dropped", "the key " + quoted(command_word(driver.last_dropped)) + " pressed " +
                                              span_text(driver.last_dropped_at, page.now) +
                                              " ago was dropped: the command taken last is the same"});
    }
}

std::string farewell_text(Snapshot const& page) {
    if (page.is_foreign) {
        return "the page is from another boot or machine; this is what its daemon said last";
    }
    return std::string(page.driver.ended != 0 ? "the daemon ended in order "
                                              : "the daemon has gone without a farewell ") +
           span_text(page.silent) + " ago; this is what it said last";
}

}  // namespace

std::vector<Reason> reasons_of(Snapshot const& page) {
    auto reasons = state_reasons(page);
    add_blocked(page, reasons);
    add_dropped(page, reasons);
    return reasons;
}

std::vector<Reason> troubles_of(Snapshot const& page) {
    Reasons troubles;
    auto const& driver = page.driver;
    if (!page.is_alive) {
        troubles.push_back({"not-running", farewell_text(page)});
    }
    if (page.is_half_written) {
        troubles.push_back({"half-written", "a part of the page was left half-written"});
    }
    if (page.is_alive && driver.ended == 0 && page.now > driver.beat + k_second && driver.beat != 0 &&
        page.now - driver.beat > k_second + page.life.period_ms * 1'000'000) {
        troubles.push_back({"no-beat", "the last cycle began " + span_text(driver.beat, page.now) + " ago"});
    }
    if (driver.devices == 0) {
        troubles.push_back({"no-device", "no input device is listened to: no command arrives"});
    } else if (driver.devices_lost != 0) {
        troubles.push_back({"device-lost", std::to_string(driver.devices_lost) + " input device(s) failed"});
    }
    if (driver.word_failed == static_cast<Number>(status::Word_fate::no_file)) {
        troubles.push_back({"word-failed",
                            "the hypervisor hears no word: its control file could not be opened at the "
                            "start, and is tried again by the next one"});
    } else if (driver.word_failed != 0) {
        troubles.push_back(
            {"word-failed", "the state word \"" + shown(text_of(driver.word)) + "\" could not be written"});
    }
    if (driver.machine_state_failed != 0) {
        troubles.push_back({"machine-state-failed", "execution management did not set the machine state " +
                                                        shown(text_of(driver.machine_state))});
    }
    if (page.failed_calls != 0) {
        troubles.push_back(
            {"calls-failed", std::to_string(page.failed_calls) + " call(s) of network management failed"});
    }
    if (page.server.failures != 0) {
        troubles.push_back(
            {"server-failed", "the notification server failed " + std::to_string(page.server.failures) + " time(s)"});
    }
    if (page.life.number > 1) {
        troubles.push_back(
            {"restarted", "it is the daemon's life number " + std::to_string(page.life.number) + " since the boot"});
    }
    return troubles;
}

}  // namespace statectl
