// What people read of one snapshot of the page. `status_text` puts its rows in the order in which one asks: whether it
// runs, the state and why, what came in and what is held, the troubles last. `why_text` tells the reasons alone.

#include "base/hex.h"
#include "services/user_data_names.h"
#include "tools/page/words.h"
#include "tools/status_report.h"
#include "tools/table.h"
#include "tools/time_text.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace statectl {

namespace {

constexpr std::size_t k_label = 13;

std::string row(std::string label, std::string const& text, Mark mark = Mark::plain) {
    label.resize(k_label, ' ');
    return marked(label + text, mark) + '\n';
}

// What is told of a daemon that has gone is told as that, before anything else.
constexpr char const* k_not_running = "not-running";

std::string farewell_row(Snapshot const& page) {
    for (auto const& trouble : troubles_of(page)) {
        if (trouble.code == k_not_running) {
            return row("Not running", trouble.text, Mark::red);
        }
    }
    return "";
}

// Real time, as long as the machine has not been suspended since; of another boot, not since the daemon's start.
std::string clock_text(Snapshot const& page, Number time) {
    using std::chrono::system_clock;
    if (page.is_foreign) {
        auto const real = static_cast<std::int64_t>(page.life.started_real + (time - page.life.started));
        return time_text(system_clock::time_point(std::chrono::nanoseconds(real)));
    }
    auto const ago = std::chrono::nanoseconds(page.silent + (page.now > time ? page.now - time : 0));
    return time_text(system_clock::now() - ago);
}

std::string commands_text(Snapshot const& page) {
    auto const& driver = page.driver;
    std::string text;
    for (std::size_t i = 0; i < std::min<std::size_t>(driver.waiting, status::k_queue); ++i) {
        text +=
            (i == 0 ? "" : ", ") + command_word(driver.queue[i]) + " since " + span_text(driver.taken_at[i], page.now);
    }
    return text.empty() ? "none waits" : text;
}

// What comes from the hypervisor, and what became of it.
std::string input_text(Snapshot const& page) {
    auto const& driver = page.driver;
    auto text = std::to_string(driver.devices) + " of " + std::to_string(driver.devices_found) +
                (driver.devices_found == 1 ? " device; " : " devices; ");
    if (driver.keys_taken == 0) {
        return text + "no key yet";
    }
    text += std::to_string(driver.keys_taken) + (driver.keys_taken == 1 ? " key" : " keys") + " taken, last " +
            command_word(driver.last_key) + " " + span_text(driver.last_key_at, page.now) + " ago";
    for (auto const& [count, what] : {std::pair<Number, char const*>{driver.keys_dropped, " dropped"},
                                      {driver.keys_swallowed, " swallowed"},
                                      {driver.keys_cleared, " cleared"}}) {
        if (count != 0) {
            text += ", " + std::to_string(count) + what;
        }
    }
    return text;
}

Number restarts_of(Snapshot const& page) {
    Number sum = 0;
    for (auto const times : page.counters.restarts) {
        sum += times;
    }
    return sum;
}

std::string restarts_text(Snapshot const& page) {
    auto const& counters = page.counters;
    return std::to_string(restarts_of(page)) + " asked for by diagnostics, the last " +
           span_text(counters.restart_at, page.now) + " ago (" + restart_word(counters.restart_type) + ")";
}

std::string network_text(Snapshot const& page) {
    if (page.life.nm_usage == 0) {
        return "not used";
    }
    if (page.services.manager_found == 0) {
        return "its manager has not been found";
    }
    if (page.network.reports == 0) {
        return "found, and has not reported yet";
    }
    auto const bytes = bytes_of(page.network.state);
    return ecu_word(page.network.ecu_state) + " since " + span_text(page.network.ecu_since, page.now) + "; needed by " +
           services::enumerate(services::network_state_names(bytes)) + " (" + base::to_hex(bytes) + ")";
}

std::string holders_text(Snapshot const& page) {
    std::vector<std::string> holders;
    for (auto const& instance : page.instances) {
        for (std::size_t hold = 0; hold < instance.since.size(); ++hold) {
            if (instance.since[hold] != 0) {
                holders.push_back(quoted(text_of(instance.name)) + " (" + hold_word(hold) + " since " +
                                  span_text(instance.since[hold], page.now) + ")");
            }
        }
    }
    return holders.empty() ? "nobody" : joined(holders);
}

std::string clients_text(Snapshot const& page) {
    auto text = std::to_string(page.server.clients) + " connected";
    if (page.server.in_progress != 0) {
        text += "; " + std::to_string(page.server.unanswered) + " of " + std::to_string(page.server.asked) +
                " asked for " + shown(text_of(page.server.mode)) + " have not answered, " +
                span_text(page.now, page.server.deadline) + " left";
    }
    return text;
}

std::string daemon_text(Snapshot const& page) {
    return "process " + std::to_string(page.life.pid) + " since " + span_text(page.life.started, page.now) +
           (page.driver.beat == 0 ? ", no cycle yet"
                                  : ", last beat " + span_text(page.driver.beat, page.now) + " ago, longest cycle " +
                                        span_text(page.driver.longest));
}

std::string word_text(Snapshot const& page) {
    if (page.driver.word_at == 0) {
        return "none yet";
    }
    return shown(text_of(page.driver.word)) + (page.driver.word_failed != 0 ? ", not written, " : ", written ") +
           span_text(page.driver.word_at, page.now) + " ago";
}

// Where a row is one condition or another, what the page says of the state that was left tells which.
std::string condition_text(Snapshot const& page) {
    auto const& driver = page.driver;
    constexpr auto k_post_run = static_cast<Number>(status::State::post_run);
    if (driver.previous == k_post_run && driver.command == 0 && (driver.row == 3 || driver.row == 6)) {
        return driver.knockout == 0 ? "the knock-out time was over" : "nobody kept the ECU alive";
    }
    return cause_text(driver.previous, driver.row);
}

}  // namespace

std::string cause_of(Snapshot const& page) {
    auto const& driver = page.driver;
    if (driver.transitions == 0) {
        return "the daemon was started";
    }
    return condition_text(page) + " (row " + std::to_string(driver.row) + " of " + state_word(driver.previous) + ")";
}

std::string status_text(Snapshot const& page) {
    auto const& driver = page.driver;
    auto text = farewell_row(page);
    text += row("State",
                state_word(driver.state) + " since " + span_text(driver.since, page.now) + " (" +
                    clock_text(page, driver.since) + ")",
                Mark::bold);
    text += row("Because", cause_of(page));
    for (auto const& reason : reasons_of(page)) {
        text += row(reason.code.rfind("key-", 0) == 0 ? "Key" : "Waits", reason.text);
    }
    text += row("Word", word_text(page));
    text += row("Commands", commands_text(page));
    text += row("Input", input_text(page));
    text += row("Network", network_text(page));
    text += row("Held by", holders_text(page));
    text += row("Clients", clients_text(page));
    if (driver.machine_state_at != 0) {
        text += row("Machine", shown(text_of(driver.machine_state)) +
                                   (driver.machine_state_failed != 0 ? ", refused" : "") + ", asked " +
                                   span_text(driver.machine_state_at, page.now) + " ago");
    }
    if (restarts_of(page) != 0) {
        text += row("Restarts", restarts_text(page));
    }
    text += row("Daemon", daemon_text(page));
    for (auto const& trouble : troubles_of(page)) {
        if (trouble.code != k_not_running) {
            text += row("Trouble", trouble.text, Mark::red);
        }
    }
    return text;
}

std::string why_text(Snapshot const& page) {
    auto const reasons = reasons_of(page);
    auto text = farewell_row(page);
    text +=
        marked(state_word(page.driver.state), Mark::bold) + " since " + span_text(page.driver.since, page.now) + ": ";
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        text += (i == 0 ? "" : "  ") + reasons[i].text + '\n';
    }
    for (auto const& trouble : troubles_of(page)) {
        if (trouble.code != k_not_running) {
            text += "  " + marked(trouble.text, Mark::red) + '\n';
        }
    }
    return text;
}

}  // namespace statectl
