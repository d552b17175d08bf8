#ifndef TESTS_SOAK_PLAYER_H
#define TESTS_SOAK_PLAYER_H

#include "bench/vehicle/vehicle.h"
#include "holds.h"
#include "invariants.h"
#include "losses.h"
#include "rest.h"
#include "road.h"
#include "script.h"
#include "way.h"

#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace soak {

/// Lets a script happen to a machine and holds the invariants against what it does. A daemon whose life is over is
/// started again; one that nothing leads on any more, too.
class Player {
 public:
    /// `programs` is the build's directory, `example` the configuration that the script's settings change.
    Player(Script const& script, std::string programs, std::string const& example);

    /// What was found, each with the step in which it was; empty when all is well. The first one ends the life.
    std::vector<std::string> play();

    /// What the machine told last, a line an event.
    std::string last_events() const;

    unsigned lives() const { return lives_; }
    unsigned suspends() const { return suspends_; }

    /// Why nothing could be frozen; empty when all could.
    std::string const& cannot_freeze() const { return road_.cannot_freeze(); }

 private:
    using Clock = Road::Clock;

    Player(nlohmann::json const& configuration, Script script, std::string programs);

    void play_steps();
    void begin(Step const* late = nullptr);
    void end(int signal);
    void end_by_itself();
    bool shows_start(Event const& event) const;
    bench::rules::State state() const;
    void act(Step const& step);
    void press(std::string const& key);
    void act_on_client(Step const& step);
    void act_on_application(Step const& step);
    void wait(Clock::duration time);
    void hear();
    void settle();
    std::string missing();
    void find(std::string const& what);

    Script script_;
    bench::vehicle::Vehicle machine_;
    Circumstances circumstances_;
    Holds holds_;
    Losses losses_;
    Road road_{machine_, circumstances_, losses_};
    Rest rest_;
    std::vector<std::unique_ptr<Invariant>> invariants_;
    Words* words_{nullptr};  ///< one of them, and another
    Way* way_{nullptr};
    std::deque<Event> last_;
    std::vector<std::string> findings_;
    std::string step_{"the start"};
    Clock::time_point last_news_;
    bool may_resume_{false};  ///< this daemon was told something else first
    bool has_started_{false};
    bool has_ended_log_{false};
    int quiet_cycles_{0};  ///< since then
    unsigned lives_{0};
    unsigned suspends_{0};
    unsigned suspends_before_{0};  ///< this daemon
};

}  // namespace soak

#endif
