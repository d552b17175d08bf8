#ifndef BENCH_VEHICLE_SURROUNDINGS_H
#define BENCH_VEHICLE_SURROUNDINGS_H

#include "bench/process/player.h"
#include "bench/vehicle/timeline.h"

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace bench::vehicle {

/// The network around the machine and the applications on it, a process each. They have names: "node" is the machine's
/// own node with the network manager's services, "other node" the rest of the vehicle, "application 1" the application
/// with that instance name.
class Surroundings {
 public:
    /// `programs` is the build's directory. One application is started for each instance name in the configuration.
    /// Throws `std::runtime_error`.
    Surroundings(std::string const& programs, nlohmann::json const& configuration);

    /// Gives one of them a command as docs/bench.md describes it and returns what has come of it, its answer. Throws
    /// `std::runtime_error` for a name that nobody has, and when the command is refused.
    nlohmann::json tell(std::string const& name, nlohmann::json const& command);

    /// Ends one of them at once, as if it had crashed, and starts it again.
    void kill(std::string const& name);
    void start(std::string const& name);

    /// Throws `std::runtime_error` for a name that nobody has, and for one that is killed.
    Child_process& process(std::string const& name) { return running(name).process(); }

    std::vector<std::string> const& applications() const { return applications_; }

    /// What has happened since the last call.
    Timeline take();

    /// To poll for what happens.
    std::vector<int> descriptors() const;

 private:
    struct Neighbour {
        std::string name;
        std::vector<std::string> words;
        std::unique_ptr<Player> player;  ///< null while it is killed
        std::size_t seen{0};             ///< messages taken so far
    };

    void add(std::string const& name, std::vector<std::string> const& words);
    Neighbour& neighbour(std::string const& name);
    Player& running(std::string const& name);

    std::vector<std::string> applications_;
    std::vector<Neighbour> neighbours_;
    Timeline told_;  ///< what the applications were told, for the next `take`
};

/// The names under which applications reach the state manager's services, each once, in their order.
std::vector<std::string> application_names(nlohmann::json const& configuration);

}  // namespace bench::vehicle

#endif
