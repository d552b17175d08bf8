#include "sweep.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <utility>

#include <sys/wait.h>

namespace faults {

namespace {

using bench::vehicle::Vehicle;
using std::chrono::steady_clock;

constexpr char const* k_plan = "/tmp/fault_plan";
constexpr char const* k_report = "/tmp/fault_report";
constexpr unsigned k_surveys = 2;
constexpr unsigned k_lives_of_a_machine = 60;

}  // namespace

Sweep::Sweep(Options options) : options_(std::move(options)), random_(options_.seed) {}

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
        if (options_.sample && steady_clock::now() - begin > std::chrono::seconds(*options_.sample)) {
            break;
        }
        try_out(trial);
        if (++done % 100 == 0) {
            std::printf("... %zu of %zu\n", done, all.size());
            std::fflush(stdout);
        }
    }
    outcomes_.print_table();
    std::printf(
        "\n%zu of %zu faults in %lld s, by seed %u: %zu wrong\n", done, all.size(),
        static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(steady_clock::now() - begin).count()),
        options_.seed, outcomes_.wrong().size());
    for (auto const& line : outcomes_.wrong()) {
        std::printf("%s\n", line.c_str());
    }
    std::fflush(stdout);
    if (done == 0) {
        std::fputs("faults: no fault was tried, so nothing is shown\n", stderr);
        return false;
    }
    return outcomes_.wrong().empty();
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

std::vector<Trial> Sweep::trials() {
    auto all = single_trials(surveys_, random_);
    all.erase(std::remove_if(all.begin(), all.end(),
                             [this](auto const& trial) {
                                 return line_of(trial, sites_).find(options_.match) == std::string::npos;
                             }),
              all.end());
    if (options_.match.empty()) {
        add_pairs(all, options_.pairs, random_);
    }
    return all;
}

void Sweep::try_out(Trial const& trial) {
    auto verdict = lead(*trial.life, trial.faults);
    if (report_.hits == 0 && verdict.outcome != Outcome::wrong) {
        verdict.outcome = Outcome::unreached;
    }
    outcomes_.note(trial, verdict, line_of(trial, sites_), !options_.match.empty());
}

Verdict Sweep::lead(Life const& life, std::vector<Fault> const& faults) {
    auto& machine = machine_for(life);
    write_plan(k_plan, faults);
    One_life one(machine, life, usual_);
    auto const may_be_stopped = std::any_of(faults.begin(), faults.end(),
                                            [](Fault const& fault) { return fault.way == Way::is_met_by_a_signal; });
    auto const of_engine = std::any_of(faults.begin(), faults.end(),
                                       [this](Fault const& fault) { return is_of_engine(sites_.at(fault.site)); });
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

}  // namespace faults
