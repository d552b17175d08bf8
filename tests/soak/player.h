#ifndef TESTS_SOAK_PLAYER_H
#define TESTS_SOAK_PLAYER_H

#include "bench/vehicle/vehicle.h"
#include "holds.h"
#include "invariants.h"
#include "script.h"
#include "support/freezer.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace soak {

/// Lets a script happen to a machine and holds the invariants against what it does. A daemon whose life is over is
/// started again; one that nothing leads on any more, too.
class Player {
 public:
    /// `programs` is the build's directory, `example` the configuration that the script's settings change.
    Player(Script script, std::string programs, std::string const& example);
    ~Player();

    /// What was found, each with the step in which it was; empty when all is well. The first one ends the life.
    std::vector<std::string> play();

    /// What the machine told last, a line an event.
    std::string last_events() const;

    unsigned lives() const { return lives_; }
    unsigned suspends() const { return suspends_; }

    /// Why nothing could be frozen; empty when all could.
    std::string const& cannot_freeze() const { return cannot_freeze_; }

 private:
    using Clock = std::chrono::steady_clock;

    /// What puts an end to something that lasts.
    struct Mend {
        Clock::time_point at;
        Verb verb;
        std::string name;  ///< of whom it happened to
        std::function<void()> action;
    };

    /// What the daemon has of the kernel's.
    struct Used {
        long descriptors{0};
        long threads{0};
        long memory_kb{0};
    };

    /// Calls to the network manager that may not have reached it.
    enum class Lost {
        nothing,
        something,
        until_resumed,  ///< a resume asks again just now
        releases,       ///< what is held was asked for again, what is not may still be
    };

    void play_steps();
    void begin();
    void end(int signal);
    void end_by_itself();
    bench::rules::State state() const;
    void act(Step const& step);
    void press(std::string const& key);
    void act_on_client(Step const& step);
    void act_on_application(Step const& step);
    void act_on_road(Step const& step);
    void stop(Step const& step);
    void freeze(Step const& step);
    void make_busy(Step const& step);
    void kill(Step const& step);
    void withdraw(Step const& step);
    void lose();
    void stall(std::chrono::milliseconds time);
    bool runs(std::string const& name);
    void for_a_while(Step const& step, std::function<void()> action);
    bool lasts(Verb verb, std::string const& name = {}) const;
    void mend(Clock::time_point now);
    void wait(Clock::duration time);
    void take_in();
    void follow_losses(std::string const& word);
    void settle();
    std::string missing();
    std::string missing_of_network();
    std::string missing_of_resources();
    Used used();
    bool tell(std::string const& neighbour, nlohmann::json const& command);
    void find(std::string const& what);

    Script script_;
    nlohmann::json settings_;  ///< of the daemon
    std::unique_ptr<bench::vehicle::Vehicle> machine_;
    std::optional<bench::vehicle::Freezer> freezer_;
    std::string cannot_freeze_;
    Circumstances circumstances_;
    Holds holds_;
    std::vector<std::unique_ptr<Invariant>> invariants_;
    Words* words_{nullptr};  ///< one of them, and another
    Way* way_{nullptr};
    std::vector<Mend> mends_;
    std::deque<Event> last_;
    std::vector<std::string> findings_;
    std::string step_{"the start"};
    Lost lost_{Lost::nothing};
    std::int64_t lossy_until_{0};
    Clock::time_point last_news_;
    bool may_resume_{false};  ///< this daemon was told something else first
    bool has_ended_log_{false};
    int quiet_cycles_{0};  ///< since then
    std::optional<Used> first_use_;
    unsigned lives_{0};
    unsigned suspends_{0};
    unsigned suspends_before_{0};  ///< this daemon
};

}  // namespace soak

#endif
