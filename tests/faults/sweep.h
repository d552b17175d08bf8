#ifndef TESTS_FAULTS_SWEEP_H
#define TESTS_FAULTS_SWEEP_H

#include "one_life.h"
#include "outcomes.h"
#include "plan.h"
#include "trials.h"

#include <chrono>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace faults {

struct Options {
    std::string programs;            ///< the build
    std::string example;             ///< text of the example configuration
    std::optional<unsigned> sample;  ///< as many faults as fit into these seconds; all when nothing
    unsigned seed{1};
    std::string life;     ///< only this one
    std::string match;    ///< only faults whose line has this text
    unsigned pairs{200};  ///< of faults in one life, among the single ones
};

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
    void try_out(Trial const& trial);
    void await_report();
    Verdict lead(Life const& life, std::vector<Fault> const& faults);
    bench::vehicle::Vehicle& machine_for(Life const& life);
    void reset_network(bench::vehicle::Vehicle& machine) const;

    Options options_;
    std::mt19937 random_;
    Machine machine_;
    Life const* life_of_machine_{nullptr};
    unsigned lives_of_machine_{0};
    Sites sites_;
    Surveys surveys_;
    std::set<std::string> usual_;
    Report report_;
    Outcomes outcomes_;
};

}  // namespace faults

#endif
