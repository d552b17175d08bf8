#include "tools/record/counts.h"

#include "tools/page/words.h"
#include "tools/record/troubles.h"

#include <algorithm>
#include <numeric>
#include <string>

namespace statectl::record {

namespace {

constexpr std::size_t k_restarts = status::k_network_calls;
constexpr std::size_t k_restarts_failed = k_restarts + status::k_restart_types;
constexpr std::size_t k_log_lost = k_restarts_failed + 1;

std::string times_text(Number times) {
    return times == 1 ? "" : ", " + std::to_string(times) + " times";
}

std::string text_at(std::size_t place, Number count) {
    if (place < k_restarts) {
        return "a call of network management failed: " + call_word(place) + times_text(count);
    }
    if (place < k_restarts_failed) {
        return "diagnostics asked for a restart: " + restart_word(place - k_restarts) + times_text(count);
    }
    if (place == k_restarts_failed) {
        return "the word for a restart was not written" + times_text(count);
    }
    return "the log lost " + std::to_string(count) + (count == 1 ? " message" : " messages");
}

}  // namespace

Counts counts_of(Snapshot const& page) {
    Counts counts{};
    std::copy(page.counters.failed_calls.begin(), page.counters.failed_calls.end(), counts.begin());
    std::copy(page.counters.restarts.begin(), page.counters.restarts.end(), counts.begin() + k_restarts);
    counts[k_restarts_failed] = page.counters.restarts_failed;
    counts[k_log_lost] = page.driver.log_lost;
    return counts;
}

Number counted_at(Snapshot const& page) {
    return std::max({page.counters.call_failed_at, page.counters.restart_at, page.driver.log_lost_at});
}

Number restarts_in(Counts const& counts) {
    return std::accumulate(counts.begin() + k_restarts, counts.begin() + k_restarts_failed, Number{0});
}

void tell_counts(trace::Life& cycle, double moment, Counts const& more) {
    for (std::size_t place = 0; place < more.size(); ++place) {
        bool const is_request = place >= k_restarts && place < k_restarts_failed;
        if (more[place] != 0) {
            remark(is_request ? cycle.requests : cycle.troubles, moment, text_at(place, more[place]));
        }
    }
}

}  // namespace statectl::record
