#ifndef TESTS_SIMULATION_LIVES_HELD_NETWORK_H
#define TESTS_SIMULATION_LIVES_HELD_NETWORK_H

#include "simulation/life.h"
#include "terms.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace lives {

/// What the rules say of the network: that its manager is found and told first what it must be, that reports of it mean
/// sleep as they should, whose calls must fail and whose must not, and that what applications and states hold is what
/// is requested of it.
class Held_network {
 public:
    using Time = simulation::Time;

    /// `find` is told what was broken.
    Held_network(Terms const& terms, std::function<void(std::string const&)> find)
        : terms_(terms), find_(std::move(find)), is_offered_(terms.manager_is_there) {}

    // What the states want of it.
    void begin_suspend();
    void begin_resume();
    void hold_default(bool is_held) { default_held_ = is_held; }

    /// The daemon ends: its services go.
    void end() { is_ending_ = true; }

    void take_report(std::string const& bits);
    void take_application(std::string const& who, std::string const& what);

    /// A call of the manager; some may come during a suspend, on the way into it.
    void take_request(simulation::Entry const& entry, bool may_come);
    void take_manager(Time now, std::string const& what);

    /// A line of the log; false if it tells nothing of the network.
    bool take_log(std::string const& text);

    /// What must be so whenever the driver waits.
    void check(simulation::Life& life);

    bool is_found() const { return is_found_; }
    bool is_asleep() const { return is_asleep_; }
    bool keeps_ecu() const;
    bool keeps_com() const;

    /// How long its manager may make a caller wait, and until when it is busy at the latest.
    Time longest_call() const { return longest_call_; }
    Time busy_until() const { return busy_until_; }

 private:
    enum class Sleep { unknown, active, ready, asleep };

    struct Held {
        bool ecu{false};
        bool wake_up{false};
        std::uint32_t bits{0};
        unsigned long number{0};  ///< of the one AC bit, from 1; 0 for none
    };

    bool must_fail(std::string const& who) const;
    void call_is_over();
    void hear_report();
    void check_found(Time now);
    void check_requested(simulation::Life& life);
    void check_user_data(simulation::Life& life);
    std::uint64_t held_bits() const;
    simulation::Bits user_data() const;

    Terms const& terms_;
    std::function<void(std::string const&)> const find_;

    bool is_offered_;
    Time offered_at_{0};
    bool is_found_{false};
    bool is_ending_{false};
    std::deque<std::string> first_;  ///< that a manager that was found is told first, and was not yet

    bool is_zero_{true};  ///< the last report
    Sleep sleep_{Sleep::active};
    bool is_asleep_{false};  ///< as the daemon takes it

    // How long the driver may wait for the manager.
    Time longest_call_{0};
    Time busy_until_{0};

    enum class Taken { all, no_longer_all, all_since_resume };
    Taken taken_{Taken::all};     ///< of what the manager was told, by it
    bool works_{true};            ///< the manager, as far as its manner goes
    bool is_standing_by_{false};  ///< from the beginning of a suspend to that of a resume
    bool default_held_{false};
    std::uint64_t bits_seen_{0};  ///< that applications have ever held
    std::map<std::string, Held> held_;
    std::map<std::string, Held> held_before_;  ///< the call that goes on
    std::string caller_;                       ///< of that; "" for none
};

}  // namespace lives

#endif
