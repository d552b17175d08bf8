#ifndef BENCH_TOUR_ACTIONS_H
#define BENCH_TOUR_ACTIONS_H

#include "bench/tour/tour.h"

#include <string>
#include <vector>

// What the tour's steps are written with.
namespace bench::tour {

using Action = std::function<void(vehicle::Machine&)>;

Action nothing();
Action start();
Action terminate();
Action press(std::string const& key);
Action tell(std::string const& neighbour, nlohmann::json const& command);
Action both(Action first, Action second);

/// The rest of the vehicle needs the network, or no longer.
Action others_need_network(bool needed);

/// Application 2 keeps the ECU alive, or no longer.
Action keep_ecu_alive(bool kept);

/// A client is "well", "silent", "failing" and so on from now on.
Action behave(std::string const& client, std::string const& manner);

/// The next life has other settings.
Action change(nlohmann::json const& settings);

/// The client diag::dcm keeps its answers, or gives them.
Action hold_answers(bool held);

/// The daemon's log of a transition.
Expectation transition(std::string const& from, std::string const& to);
Expectation word(std::string const& text);

/// An application requests something.
Expectation requested(std::string const& application, std::string const& what);

/// A client does something; is asked for a state; what the log says of its answer.
Expectation seen(vehicle::Act const& act);
Expectation asked(std::string const& client, std::string const& state);
Expectation outcome(std::string const& client, std::string const& how);

/// Some cycles pass and the machine stays in its state.
std::vector<Expectation> stays();

/// The daemon starts and runs.
Step new_life(std::string const& name, Action const& before = nothing());

/// The network is left to itself, falls asleep, and so the machine comes to Post Run.
std::vector<Expectation> sleeps_into_post_run();

/// The normal shutdown, out of a state.
std::vector<Expectation> shuts_down_from(std::string const& state);

// The lives of the daemon, one after the other.
std::vector<Step> life_with_the_network();
std::vector<Step> life_of_suspends();
std::vector<Step> lives_that_end_soon();
std::vector<Step> lives_with_clients();

}  // namespace bench::tour

#endif
