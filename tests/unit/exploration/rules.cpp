#include "rules.h"

#include "statemanager/states/state_interface.h"

#include <algorithm>
#include <array>

namespace exploration {

namespace states = ximo::ap::statemanager::states;

namespace {

using Command = Virtio_command;

// clang-format off
constexpr std::array k_rules{
    Rule{states::k_starting_up, states::k_running, Intention::stays,
         [](Situation const& now) { return !now.nm_usage || now.nm_is_found(); }},

    Rule{states::k_running, states::k_nm_controlled, Intention::ends,
         [](Situation const& now) { return now.is_head(Command::nm_controlled) && now.nm_usage; }},
    Rule{states::k_running, states::k_nm_controlled, Intention::begins,
         [](Situation const& now) { return now.is_head(Command::nm_controlled_prepare_sd) && now.nm_usage; }},
    Rule{states::k_running, states::k_preparing, Intention::stays,
         [](Situation const& now) { return now.is_head(Command::prepare_sd); }},
    Rule{states::k_running, states::k_shutting_down, Intention::stays,
         [](Situation const& now) { return now.is_head(Command::shutdown); }},

    Rule{states::k_nm_controlled, states::k_running, Intention::ends,
         [](Situation const& now) { return now.is_head(Command::run); }},
    Rule{states::k_nm_controlled, states::k_post_run, Intention::stays,
         [](Situation const& now) { return now.network_sleeps() && now.ecu_is_kept(); }},
    Rule{states::k_nm_controlled, states::k_shutting_down, Intention::ends,
         [](Situation const& now) {
             return now.is_head(Command::shutdown) || (now.nobody_keeps_ecu() && !now.point.prepare_sd);
         }},
    Rule{states::k_nm_controlled, states::k_preparing, Intention::ends,
         [](Situation const& now) {
             return now.is_head(Command::prepare_sd) || (now.nobody_keeps_ecu() && now.point.prepare_sd);
         }},

    Rule{states::k_post_run, states::k_nm_controlled, Intention::stays,
         [](Situation const& now) { return now.com_is_kept(); }},
    Rule{states::k_post_run, states::k_shutting_down, Intention::ends,
         [](Situation const& now) {
             return now.is_head(Command::shutdown) || (now.is_released() && !now.point.prepare_sd);
         }},
    Rule{states::k_post_run, states::k_running, Intention::ends,
         [](Situation const& now) { return now.is_head(Command::run); }},
    Rule{states::k_post_run, states::k_preparing, Intention::ends,
         [](Situation const& now) {
             return now.is_head(Command::prepare_sd) || (now.is_released() && now.point.prepare_sd);
         }},

    Rule{states::k_preparing, states::k_resuming, Intention::stays,
         [](Situation const& now) { return now.is_head(Command::run); }},
    Rule{states::k_preparing, states::k_prepared_sd, Intention::stays,
         [](Situation const& now) { return now.notification_is_over(); }},

    Rule{states::k_prepared_sd, states::k_resuming, Intention::stays,
         [](Situation const& now) { return now.is_head(Command::run); }},
    Rule{states::k_prepared_sd, states::k_shutting_down, Intention::stays,
         [](Situation const& now) { return now.is_head(Command::shutdown); }},

    Rule{states::k_resuming, states::k_shutting_down, Intention::stays,
         [](Situation const& now) { return now.is_head(Command::shutdown); }},
    Rule{states::k_resuming, states::k_running, Intention::stays,
         [](Situation const& now) { return now.notification_is_over(); }},
};
// clang-format on

}  // namespace

Rule const* rule_of(Situation const& situation) {
    auto const rule = std::find_if(k_rules.begin(), k_rules.end(), [&](Rule const& candidate) {
        return candidate.from == situation.point.state && candidate.applies(situation);
    });
    return rule == k_rules.end() ? nullptr : &*rule;
}

}  // namespace exploration
