#ifndef TESTS_FAULTS_LIVES_H
#define TESTS_FAULTS_LIVES_H

#include "bench/vehicle/machine.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// The lives that the daemon is led through, with a fault in each.
namespace faults {

/// Something that a life without a fault shows.
struct Expected {
    bench::vehicle::Kind kind;
    std::string text;       ///< its begin
    std::string instead{};  ///< what the log says then, where a lost word must not keep the machine from its state
};

struct Step {
    std::string name;
    std::function<void(bench::vehicle::Machine&)> action;
    std::vector<Expected> expected;
    bool checks_health{false};  ///< instead of an action: is everybody served, does nothing spin
};

struct Life {
    std::string name;
    bool with_network;
    nlohmann::json settings;  ///< that differ from the example configuration
    std::vector<std::string> words;
    std::vector<Step> steps;  ///< the last one ends the daemon
};

std::vector<Life> const& lives();

}  // namespace faults

#endif
