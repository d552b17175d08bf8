// One snapshot of the page as JSON for programs: `status_json` has everything, `why_json` the reasons alone. Both only
// read.

#include "base/hex.h"
#include "services/user_data_names.h"
#include "tools/page/words.h"
#include "tools/status_report.h"

#include <algorithm>

namespace statectl {

namespace {

using nlohmann::json;

json list_of(std::vector<Reason> const& reasons) {
    auto list = json::array();
    for (auto const& reason : reasons) {
        list.push_back({{"code", reason.code}, {"text", reason.text}});
    }
    return list;
}

json seconds(Number nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e9;
}

// Seconds since a time; null for "never".
json ago(Snapshot const& page, Number time) {
    return time == 0 ? json() : seconds(page.now > time ? page.now - time : 0);
}

json queue_json(Snapshot const& page) {
    auto list = json::array();
    for (std::size_t i = 0; i < std::min<std::size_t>(page.driver.waiting, status::k_queue); ++i) {
        list.push_back(
            {{"command", command_word(page.driver.queue[i])}, {"waits_s", ago(page, page.driver.taken_at[i])}});
    }
    return list;
}

json input_json(Snapshot const& page) {
    auto const& driver = page.driver;
    return {{"devices", driver.devices},
            {"found", driver.devices_found},
            {"lost", driver.devices_lost},
            {"lost_s", ago(page, driver.device_lost_at)},
            {"taken", driver.keys_taken},
            {"dropped", driver.keys_dropped},
            {"swallowed", driver.keys_swallowed},
            {"cleared", driver.keys_cleared},
            {"last", driver.last_key == 0 ? json() : json(command_word(driver.last_key))},
            {"last_s", ago(page, driver.last_key_at)}};
}

// By type; that of an unknown one is the number 0.
json restarts_json(Snapshot const& page) {
    auto const& counters = page.counters;
    return {{"by_type", counters.restarts},
            {"last_type", counters.restart_at == 0 ? json() : json(counters.restart_type)},
            {"last_s", ago(page, counters.restart_at)},
            {"failed", counters.restarts_failed}};
}

json failed_calls_json(Snapshot const& page) {
    auto calls = json::object();
    for (std::size_t call = 0; call < status::k_network_calls; ++call) {
        calls[call_word(call)] = page.counters.failed_calls[call];
    }
    return calls;
}

json network_json(Snapshot const& page) {
    auto const bytes = bytes_of(page.network.state);
    return {{"used", page.life.nm_usage != 0},
            {"found", page.services.manager_found != 0},
            {"ecu_state", ecu_word(page.network.ecu_state)},
            {"reports", page.network.reports},
            {"state", base::to_hex(bytes)},
            {"needed_by", services::network_state_names(bytes)},
            {"failed_calls", failed_calls_json(page)}};
}

json request_json(Snapshot const& page) {
    auto const& server = page.server;
    if (server.in_progress == 0) {
        return {};
    }
    return {{"mode", text_of(server.mode)},
            {"group", group_word(page.driver.group)},
            {"asked", server.asked},
            {"unanswered", server.unanswered},
            {"left_s", seconds(server.deadline > page.now ? server.deadline - page.now : 0)}};
}

}  // namespace

json status_json(Snapshot const& page) {
    auto const& driver = page.driver;
    return {{"running", page.is_alive},
            {"state", state_word(driver.state)},
            {"since_s", ago(page, driver.since)},
            {"cause",
             {{"state", state_word(driver.previous)},
              {"row", driver.row},
              {"command", driver.command == 0 ? json() : json(command_word(driver.command))},
              {"text", cause_of(page)}}},
            {"word",
             {{"text", text_of(driver.word)},
              {"written", driver.word_failed == 0},
              {"since_s", ago(page, driver.word_at)}}},
            {"prepare_sd", driver.prepare_sd != 0},
            {"forced", driver.forced != 0},
            {"commands", queue_json(page)},
            {"input", input_json(page)},
            {"network", network_json(page)},
            {"clients", page.server.clients},
            {"request", request_json(page)},
            {"restarts", restarts_json(page)},
            {"log_lost", page.driver.log_lost},
            {"machine_state", text_of(driver.machine_state)},
            {"machine_state_since_s", ago(page, driver.machine_state_at)},
            {"machine_state_refused", driver.machine_state_failed != 0},
            {"pid", page.life.pid},
            {"life", page.life.number},
            {"configuration", text_of(page.life.configuration)},
            {"configuration_digest", digest_text(page.life.digest)},
            {"beat_s", ago(page, driver.beat)},
            {"cycles", driver.cycles},
            {"longest_cycle_s", seconds(driver.longest)},
            {"reasons", list_of(reasons_of(page))},
            {"troubles", list_of(troubles_of(page))}};
}

json why_json(Snapshot const& page) {
    return {{"running", page.is_alive},
            {"state", state_word(page.driver.state)},
            {"since_s", ago(page, page.driver.since)},
            {"reasons", list_of(reasons_of(page))},
            {"troubles", list_of(troubles_of(page))}};
}

}  // namespace statectl
