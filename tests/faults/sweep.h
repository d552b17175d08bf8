#ifndef TESTS_FAULTS_SWEEP_H
#define TESTS_FAULTS_SWEEP_H

#include "one_life.h"
#include "plan.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace faults {

struct Options {
    std::string programs;                        ///< the build
    std::string example;                         ///< text of the example configuration
    std::optional<std::chrono::seconds> sample;  ///< as many faults as this takes; all when nothing
    unsigned seed{1};
    std::string life;     ///< only this one
    std::string match;    ///< only faults whose line has this text
    unsigned pairs{200};  ///< of faults in one life, among the single ones
};

/// A fault, or two, in one life.
struct Trial {
    Life const* life{nullptr};
    std::vector<Fault> faults;
};

/// For each call and outcome the errors that led to it, counted.
using Table = std::map<std::string, std::map<std::size_t, std::map<std::string, unsigned>>>;

/// Surveys each life, then leads the daemon through it again and again with another fault.
class Sweep {
 public:
    explicit Sweep(Options options);
    ~Sweep();

    /// Prints what is wrong as it is found, and a table at the end. True when nothing was.
    bool run();

 private:
    using Machine = std::unique_ptr<bench::vehicle::Vehicle>;

    void survey(Life const& life);
    std::vector<Trial> trials();
    void add_trials(Life const& life, Site const& site, std::vector<std::pair<unsigned, Trial>>& trials) const;
    void add_pairs(std::vector<Trial>& trials);
    void take(Trial const& trial);
    void await_report();
    Verdict lead(Life const& life, std::vector<Fault> const& faults);
    bench::vehicle::Vehicle& machine_for(Life const& life);
    void reset_network(bench::vehicle::Vehicle& machine) const;
    Site const& site_of(Fault const& fault) const { return sites_.at(fault.site); }
    std::string line_of(Trial const& trial) const;
    void note(Trial const& trial, Verdict const& verdict);
    void print_table() const;

    Options options_;
    std::mt19937 random_;
    Machine machine_;
    Life const* life_of_machine_{nullptr};
    unsigned lives_of_machine_{0};
    std::map<std::uint64_t, Site> sites_;
    std::map<Life const*, std::vector<Site>> surveys_;
    std::set<std::string> usual_;
    Report report_;
    Table table_;
    std::vector<unsigned> totals_;
    std::vector<std::string> wrong_;
};

}  // namespace faults

#endif
