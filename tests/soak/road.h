#ifndef TESTS_SOAK_ROAD_H
#define TESTS_SOAK_ROAD_H

#include "bench/vehicle/vehicle.h"
#include "invariants.h"
#include "losses.h"
#include "script.h"
#include "support/freezer.h"

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace soak {

/// What the road does to the machine and its neighbours: it stops, freezes, kills and parts them, for a while. It notes
/// in the circumstances what the daemon can't be blamed for.
class Road {
 public:
    using Clock = std::chrono::steady_clock;

    Road(bench::vehicle::Vehicle& machine, Circumstances& circumstances, Losses& losses)
        : machine_(machine), circumstances_(circumstances), losses_(losses) {}
    ~Road();
    Road(Road const&) = delete;
    Road& operator=(Road const&) = delete;

    void act(Step const& step);

    /// Puts an end to what lasts until then.
    void mend(Clock::time_point now);

    /// Gives a neighbour a command; false, and nothing is done, for one that is killed.
    bool tell(std::string const& neighbour, nlohmann::json const& command);

    bool has_killed(std::string const& name) const { return lasts(Verb::kill, name); }

    /// Why nothing could be frozen; empty when all could.
    std::string const& cannot_freeze() const { return cannot_freeze_; }

 private:
    /// What puts an end to something that lasts.
    struct Mend {
        Clock::time_point at;
        Verb verb;
        std::string name;  ///< of whom it happened to
        std::function<void()> action;
    };

    void stop(Step const& step);
    void freeze(Step const& step);
    void make_busy(Step const& step);
    void kill(Step const& step);
    void make_late(Step const& step);
    void withdraw(Step const& step);
    void stall(std::chrono::milliseconds time);
    bool runs(std::string const& name);
    void for_a_while(Step const& step, std::function<void()> action);
    bool lasts(Verb verb, std::string const& name = {}) const;

    bench::vehicle::Vehicle& machine_;
    Circumstances& circumstances_;
    Losses& losses_;
    std::optional<bench::vehicle::Freezer> freezer_;
    std::string cannot_freeze_;
    std::vector<Mend> mends_;
};

}  // namespace soak

#endif
