#include "sweep.h"

#include "allocation.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <utility>

#include <sys/syscall.h>
#include <sys/wait.h>

namespace faults {

namespace {

using bench::vehicle::Vehicle;
using std::chrono::steady_clock;

constexpr char const* k_plan = "/tmp/fault_plan";
constexpr char const* k_report = "/tmp/fault_report";
constexpr unsigned k_surveys = 2;
constexpr unsigned k_first_positions = 6;
constexpr unsigned k_lives_of_a_machine = 60;
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
// has eight bytes or none.
bool can_be_short(Site const& site) {
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

std::string text_of(std::map<std::string, unsigned> const& counts) {
    std::string text;
    for (auto const& [error, count] : counts) {
        text += error + ' ' + std::to_string(count) + ' ';
    }
    return text;
}

// "EINTR", "short", "SIGTERM".
std::string error_of(Fault const& fault) {
    auto const text = faults::text_of(fault);
    return text.substr(text.rfind(' ') + 1);
}

}  // namespace

Sweep::Sweep(Options options) : options_(std::move(options)), random_(options_.seed), totals_(k_outcomes) {}

Sweep::~Sweep() = default;

bool Sweep::run() {
    for (auto const& life : lives()) {
        if (options_.life.empty() || options_.life == life.name) {
            survey(life);
        }
    }
    auto const begin = steady_clock::now();
    auto const all = trials();
    std::size_t done = 0;
    for (auto const& trial : all) {
        if (options_.sample && steady_clock::now() - begin > *options_.sample) {
            break;
        }
        take(trial);
        if (++done % 100 == 0) {
            std::printf("... %zu of %zu\n", done, all.size());
            std::fflush(stdout);
        }
    }
    print_table();
    std::printf(
        "\n%zu of %zu faults in %lld s, by seed %u: %zu wrong\n", done, all.size(),
        static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(steady_clock::now() - begin).count()),
        options_.seed, wrong_.size());
    for (auto const& line : wrong_) {
        std::printf("%s\n", line.c_str());
    }
    std::fflush(stdout);
    if (done == 0) {
        std::fputs("faults: no fault was tried, so nothing is shown\n", stderr);
        return false;
    }
    return wrong_.empty();
}

// Twice, so that what differs from time to time is known as usual.
void Sweep::survey(Life const& life) {
    for (unsigned times = 0; times < k_surveys; ++times) {
        auto const verdict = lead(life, {});
        if (verdict.outcome == Outcome::wrong) {
            throw std::runtime_error("The life \"" + life.name + "\" fails without a fault: " + verdict.reason);
        }
        usual_.insert(verdict.told.begin(), verdict.told.end());
    }
    surveys_[&life] = report_.sites;
    for (auto const& site : report_.sites) {
        sites_.insert({site.id, site});
    }
    auto const calls = std::accumulate(report_.sites.begin(), report_.sites.end(), 0U,
                                       [](unsigned sum, Site const& site) { return sum + site.count; });
    std::printf("%s: %u calls from %zu places\n", life.name.c_str(), calls, report_.sites.size());
    std::fflush(stdout);
}

// In an order in which any beginning is a sample: first calls of all places before the second ones.
std::vector<Trial> Sweep::trials() {
    std::vector<std::pair<unsigned, Trial>> ranked;
    for (auto const& [life, sites] : surveys_) {
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
    std::shuffle(ranked.begin(), ranked.end(), random_);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](auto const& one, auto const& other) { return one.first < other.first; });
    std::vector<Trial> result;
    for (auto& [rank, trial] : ranked) {
        if (line_of(trial).find(options_.match) != std::string::npos) {
            result.push_back(std::move(trial));
        }
    }
    if (options_.match.empty()) {
        add_pairs(result);
    }
    return result;
}

void Sweep::add_trials(Life const& life, Site const& site, std::vector<std::pair<unsigned, Trial>>& trials) const {
    auto const& call = *call_of(site.call);
    unsigned rank = 0;
    for (auto const position : positions(site.count)) {
        for (auto const& error : errors_of(call, site.subject, site.is_nonblocking)) {
            trials.push_back({rank, {&life, {{site.call, site.id, position, Way::fails, error.number}}}});
        }
        if (call.length_argument >= 0 && can_be_short(site)) {
            trials.push_back({rank, {&life, {{site.call, site.id, position, Way::is_short, 0}}}});
        }
        if (site.call != k_allocation) {
            trials.push_back({rank, {&life, {{site.call, site.id, position, Way::is_met_by_a_signal, SIGTERM}}}});
        }
        ++rank;
    }
}

// Spread evenly over all others, so that a sample has its share of them.
void Sweep::add_pairs(std::vector<Trial>& trials) {
    if (trials.empty() || options_.pairs == 0) {
        return;
    }
    auto const singles = std::exchange(trials, {});
    auto const distance = std::max<std::size_t>(singles.size() / options_.pairs, 1);
    std::uniform_int_distribution<std::size_t> any(0, singles.size() - 1);
    for (std::size_t place = 0; place < singles.size(); ++place) {
        trials.push_back(singles[place]);
        auto const& one = singles[any(random_)];
        auto const& other = singles[any(random_)];
        if (place % distance == distance - 1 && one.life == other.life) {
            trials.push_back({one.life, {one.faults.front(), other.faults.front()}});
        }
    }
}

void Sweep::take(Trial const& trial) {
    auto verdict = lead(*trial.life, trial.faults);
    if (report_.hits == 0 && verdict.outcome != Outcome::wrong) {
        verdict.outcome = Outcome::unreached;
    }
    note(trial, verdict);
}

Verdict Sweep::lead(Life const& life, std::vector<Fault> const& faults) {
    auto& machine = machine_for(life);
    write_plan(k_plan, faults);
    One_life one(machine, life, usual_);
    auto const may_be_stopped = std::any_of(faults.begin(), faults.end(),
                                            [](Fault const& fault) { return fault.way == Way::is_met_by_a_signal; });
    auto const of_engine =
        std::any_of(faults.begin(), faults.end(), [this](Fault const& fault) { return is_of_engine(site_of(fault)); });
    auto verdict = one.lead(may_be_stopped, of_engine);
    await_report();
    ::waitpid(report_.watcher, nullptr, 0);
    bool const is_as_before = verdict.outcome == Outcome::as_ever || verdict.outcome == Outcome::stopped;
    if (!is_as_before || ++lives_of_machine_ >= k_lives_of_a_machine) {
        machine_.reset();
    }
    return verdict;
}

// The daemon has ended, so its watcher has nothing left to do but write.
void Sweep::await_report() {
    auto const end = steady_clock::now() + std::chrono::minutes(1);
    report_ = read_report(k_report);
    while (report_.watcher == 0) {
        if (steady_clock::now() > end) {
            throw std::runtime_error("The watcher of a daemon has gone without a report");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        report_ = read_report(k_report);
    }
}

// A machine serves for several lives, unless one has left something behind.
Vehicle& Sweep::machine_for(Life const& life) {
    if (machine_ && life_of_machine_->with_network == life.with_network) {
        machine_->change_configuration({{"ap_statemanager", life.settings}});
    } else {
        machine_.reset();
        auto configuration = nlohmann::json::parse(options_.example);
        configuration["ap_statemanager"].merge_patch(life.settings);
        bench::vehicle::Options options;
        options.programs = options_.programs;
        options.configuration = configuration.dump();
        options.with_network = life.with_network;
        options.daemon_starter = {options_.programs + "/tests/faults/fault_at_call", k_plan, k_report};
        machine_ = std::make_unique<Vehicle>(options);
        lives_of_machine_ = 0;
    }
    life_of_machine_ = &life;
    if (life.with_network) {
        reset_network(*machine_);
    }
    return *machine_;
}

// Nobody needs the network, whatever the last life left.
void Sweep::reset_network(Vehicle& machine) const {
    for (auto const* node : {"other node", "node"}) {
        machine.tell(node, {{"do", "release"}, {"bits", "ff ff ff ff ff ff"}});
    }
    auto const is_at_rest = [&machine] {
        auto const bits = machine.tell("node", {{"do", "list"}}).at("network_state").get<std::string>();
        return bits.find_first_not_of("0 ") == std::string::npos;
    };
    while (!is_at_rest()) {
        machine.update(std::chrono::milliseconds(10));
    }
}

std::string Sweep::line_of(Trial const& trial) const {
    std::string line = trial.life->name;
    for (auto const& fault : trial.faults) {
        line += ": " + faults::text_of(fault) + " at call " + std::to_string(fault.position) + " of " +
                text_of(site_of(fault));
    }
    return line;
}

void Sweep::note(Trial const& trial, Verdict const& verdict) {
    auto const outcome = static_cast<std::size_t>(verdict.outcome);
    ++totals_[outcome];
    bool const is_pair = trial.faults.size() > 1;
    auto const& fault = trial.faults.front();
    ++table_[is_pair ? "two of them" : call_of(fault.call)->name][outcome][is_pair ? "all" : error_of(fault)];
    if (verdict.outcome == Outcome::wrong) {
        auto line = line_of(trial) + "\n    " + verdict.reason;
        for (auto const& told : verdict.told) {
            line += "\n    logged: " + told;
        }
        std::printf("WRONG %s\n", line.c_str());
        wrong_.push_back(line);
    } else if (!options_.match.empty()) {
        std::printf("%s: %s\n", name_of(verdict.outcome), line_of(trial).c_str());
        for (auto const& told : verdict.told) {
            std::printf("    logged: %s\n", told.c_str());
        }
    }
    std::fflush(stdout);
}

// A row for each call; each outcome with the errors that led to it, and how often.
void Sweep::print_table() const {
    std::printf("\n| Call |");
    for (std::size_t outcome = 0; outcome < k_outcomes; ++outcome) {
        std::printf(" %s |", name_of(static_cast<Outcome>(outcome)));
    }
    std::printf("\n|---|---|---|---|---|---|---|---|\n");
    for (auto const& [call, outcomes] : table_) {
        std::printf("| `%s` |", call.c_str());
        for (std::size_t outcome = 0; outcome < k_outcomes; ++outcome) {
            auto const found = outcomes.find(outcome);
            std::printf(" %s|", found == outcomes.end() ? "" : text_of(found->second).c_str());
        }
        std::printf("\n");
    }
    std::printf("| all |");
    for (auto const total : totals_) {
        std::printf(" %u |", total);
    }
    std::printf("\n");
}

}  // namespace faults
