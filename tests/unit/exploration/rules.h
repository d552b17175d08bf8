#ifndef TESTS_UNIT_EXPLORATION_RULES_H
#define TESTS_UNIT_EXPLORATION_RULES_H

#include "point.h"
#include "statemanager/service_handler_interface.h"

namespace exploration {

/// What a cycle finds. Conditions are asked for in the order of the rules and only as far as one decides: one that the
/// machine should have asked for and has not is tried both ways all the same (see Conditions).
struct Situation {
    Point& point;
    bool nm_usage;
    bool time_is_over;  ///< of the post-run state
    ximo::ap::statemanager::Service_handler_interface const& conditions;

    bool is_head(Virtio_command command) const { return point.head() == command; }
    bool network_sleeps() const { return conditions.ecu_in_sleep_mode(); }
    bool ecu_is_kept() const { return conditions.apps_keep_ecu_alive(); }
    bool com_is_kept() const { return conditions.apps_keep_com_alive(); }
    bool nm_is_found() const { return conditions.nm_interface_available(); }
    bool nobody_keeps_ecu() const { return network_sleeps() && !ecu_is_kept(); }
    bool is_released() const { return !ecu_is_kept() || time_is_over; }
    bool notification_is_over() const {
        point.notifier.check();
        return !point.notifier.is_running();
    }
};

/// What becomes of the intention to suspend.
enum class Intention { stays, begins, ends };

/// One way out of a state. Of the rules of a state the first that applies counts.
struct Rule {
    unsigned from;
    unsigned to;
    Intention intention;
    bool (*applies)(Situation const&);
};

/// The rule that the machine has to follow in this cycle; nullptr when it has to stay.
Rule const* rule_of(Situation const& situation);

}  // namespace exploration

#endif
