#ifndef TESTS_FAULTS_TRIALS_H
#define TESTS_FAULTS_TRIALS_H

#include "lives.h"
#include "plan.h"

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace faults {

/// A fault, or two, in one life.
struct Trial {
    Life const* life{nullptr};
    std::vector<Fault> faults;
};

/// Places that call, by their numbers.
using Sites = std::map<std::uint64_t, Site>;

/// What was seen in a life without faults.
using Surveys = std::map<Life const*, std::vector<Site>>;

/// Each fault that is plausible, a trial each, in an order in which any beginning is a sample: first calls of all
/// places before the second ones.
std::vector<Trial> single_trials(Surveys const& surveys, std::mt19937& random);

/// So many trials of two faults, drawn from the single ones and spread evenly over them.
void add_pairs(std::vector<Trial>& trials, unsigned count, std::mt19937& random);

/// What the engine calls for itself.
bool is_of_engine(Site const& site);

/// A trial in words; `sites` has its places.
std::string line_of(Trial const& trial, Sites const& sites);

}  // namespace faults

#endif
