#ifndef TESTS_SOAK_WAY_H
#define TESTS_SOAK_WAY_H

#include "bench/rules/rules.h"
#include "holds.h"
#include "invariants.h"
#include "notifier_model.h"

#include <deque>
#include <string>

namespace soak {

/// What is known of a cycle of the driver's, and a guess of what is not.
struct Situation : bench::rules::Situation {
    bench::rules::Command head{};
    bool nm_usage{};
    bool found{};
    bool sleeps{};
    bool ecu{};
    bool com{};
    bool prepares{};
    bool time_over{};
    bool asked{};

    bench::rules::Command command() const override { return head; }
    bool nm_is_used() const override { return nm_usage; }
    bool nm_is_found() const override { return found; }
    bool network_sleeps() const override { return sleeps; }
    bool ecu_is_kept() const override { return ecu; }
    bool com_is_kept() const override { return com; }
    bool is_to_prepare() const override { return prepares; }
    bool time_is_over() const override { return time_over; }
    bool clients_are_asked() const override { return asked; }
};

/// The driver: each key is taken or dropped as the queue's rules say, each transition is that of the first row that
/// can hold, each state writes its word, and no row that holds is forgotten.
class Way : public Invariant {
 public:
    Way(Circumstances const& circumstances, Holds const& holds) : circumstances_(circumstances), holds_(holds) {}

    void hear(Event const& event, Finding const& finding) override;
    std::string missing_at_rest() override;

    bench::rules::State state() const { return state_; }
    bool is_held_up() const;  ///< at rest: by a key that its state does not take, or in the last state

 private:
    void hear_log(std::string const& text, Finding const& finding);
    void press(std::string const& key);
    void go(bench::rules::State to, Finding const& finding);
    void hear_notifier(std::string const& text, Finding const& finding);
    bool may_go(bench::rules::State to);
    Situation situation() const;

    Circumstances const& circumstances_;
    Holds const& holds_;
    bench::rules::State state_{bench::rules::State::starting_up};
    bool is_to_prepare_{false};
    bool is_asleep_{false};
    std::deque<std::string> coming_;  ///< commands whose keys were pressed, not taken yet
    std::string last_pressed_;
    std::deque<std::string> queue_;
    std::deque<std::string> entered_{"startingup"};  ///< words of the states, as the log tells them
    std::deque<std::string> written_;
    exploration::Notifier_model notifier_;
    bool is_asking_{false};  ///< a sequence has begun, its first group is next
};

}  // namespace soak

#endif
