#include "trials.h"

#include "allocation.h"
#include "calls.h"

#include <algorithm>
#include <csignal>
#include <tuple>
#include <utility>

#include <sys/syscall.h>

namespace faults {

namespace {

constexpr unsigned k_first_positions = 6;
constexpr std::size_t k_shown_frames = 12;

// The first six calls of a place, then ever fewer, and the last one.
std::vector<unsigned> positions(unsigned count) {
    std::vector<unsigned> result;
    for (unsigned position = 1; position <= count; position += position < k_first_positions ? 1 : position / 2) {
        result.push_back(position);
    }
    if (!result.empty() && result.back() != count) {
        result.push_back(count);
    }
    return result;
}

bool is_of(std::string const& frame, char const* library) {
    return frame.rfind(library, 0) == 0;
}

bool has_frame(Site const& site, char const* text) {
    return std::any_of(site.frames.begin(), site.frames.end(),
                       [text](auto const& frame) { return frame.find(text) != std::string::npos; });
}

// Of the allocations only those of the notification server's thread and of the service handler: at the start and in the
// states one that fails ends the daemon.
bool is_tried(Site const& site) {
    return site.call != k_allocation || has_frame(site, "Client_states_impl::thread_main") ||
           has_frame(site, "Service_handler");
}

// A datagram goes whole, what a pipe takes at once as well (a message of ours is shorter than PIPE_BUF), and a counter
// has eight bytes or none. A call that takes its length out of a structure is left as it is.
bool can_be_short(Site const& site) {
    auto const use = call_of(site.call)->use;
    if ((use != Use::reads && use != Use::writes) || site.call == SYS_recvmsg || site.call == SYS_sendmsg) {
        return false;
    }
    bool const is_of_pipe = site.subject == Subject::pipe && (site.call == SYS_write || site.call == SYS_writev);
    return site.subject != Subject::datagrams && site.subject != Subject::other && !is_of_pipe;
}

// The frames that tell where a call was made: not the C library's.
std::string text_of(Site const& site) {
    std::string text;
    std::size_t shown = 0;
    for (auto const& frame : site.frames) {
        if (!is_of(frame, "libc.so") && !is_of(frame, "libstdc++") && !is_of(frame, "libfailing_new") &&
            shown < k_shown_frames) {
            text += (shown++ == 0 ? "" : " < ") + frame;
        }
    }
    return text.empty() && !site.frames.empty() ? site.frames.front() : text;
}

void add_trials(Life const& life, Site const& site, std::vector<std::pair<unsigned, Trial>>& trials) {
    auto const& call = *call_of(site.call);
    unsigned rank = 0;
    for (auto const position : positions(site.count)) {
        for (int const error : errors_of(call, site.subject, site.is_nonblocking)) {
            trials.push_back({rank, {&life, {{site.call, site.id, position, Way::fails, error}}}});
        }
        if (can_be_short(site)) {
            trials.push_back({rank, {&life, {{site.call, site.id, position, Way::is_short, 0}}}});
        }
        if (site.call != k_allocation) {
            trials.push_back({rank, {&life, {{site.call, site.id, position, Way::is_met_by_a_signal, SIGTERM}}}});
        }
        ++rank;
    }
}

}  // namespace

// What the engine calls for itself: none of the daemon's frames is nearer to the call than the engine's.
// A thread's start tells no more than itself: its stack can't be followed.
bool is_of_engine(Site const& site) {
    if (site.call == SYS_clone3 && site.frames.size() == 1) {
        return true;
    }
    for (auto const& frame : site.frames) {
        if (is_of(frame, "ap_statemanager")) {
            return false;
        }
        if (is_of(frame, "libddsc")) {
            return true;
        }
    }
    return false;
}

std::vector<Trial> single_trials(Surveys const& surveys, std::mt19937& random) {
    std::vector<std::pair<unsigned, Trial>> ranked;
    for (auto const& [life, sites] : surveys) {
        for (auto const& site : sites) {
            if (is_tried(site)) {
                add_trials(*life, site, ranked);
            }
        }
    }
    std::sort(ranked.begin(), ranked.end(), [](auto const& one, auto const& other) {
        auto const key = [](auto const& ranked_trial) {
            auto const& fault = ranked_trial.second.faults.front();
            return std::make_tuple(ranked_trial.second.life->name, fault.site, fault.position, fault.way, fault.value);
        };
        return key(one) < key(other);
    });
    std::shuffle(ranked.begin(), ranked.end(), random);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](auto const& one, auto const& other) { return one.first < other.first; });
    std::vector<Trial> result;
    for (auto& [rank, trial] : ranked) {
        result.push_back(std::move(trial));
    }
    return result;
}

void add_pairs(std::vector<Trial>& trials, unsigned count, std::mt19937& random) {
    if (trials.empty() || count == 0) {
        return;
    }
    auto const singles = std::exchange(trials, {});
    auto const distance = std::max<std::size_t>(singles.size() / count, 1);
    std::uniform_int_distribution<std::size_t> any(0, singles.size() - 1);
    for (std::size_t place = 0; place < singles.size(); ++place) {
        trials.push_back(singles[place]);
        auto const& one = singles[any(random)];
        auto const& other = singles[any(random)];
        if (place % distance == distance - 1 && one.life == other.life) {
            trials.push_back({one.life, {one.faults.front(), other.faults.front()}});
        }
    }
}

std::string line_of(Trial const& trial, Sites const& sites) {
    std::string line = trial.life->name;
    for (auto const& fault : trial.faults) {
        line += ": " + faults::text_of(fault) + " at call " + std::to_string(fault.position) + " of " +
                text_of(sites.at(fault.site));
    }
    return line;
}

}  // namespace faults
