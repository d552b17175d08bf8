#ifndef TESTS_UNIT_EXPLORATION_CONDITIONS_H
#define TESTS_UNIT_EXPLORATION_CONDITIONS_H

#include "statemanager/service_handler_interface.h"

#include <array>
#include <optional>
#include <vector>

namespace exploration {

enum Condition : unsigned { nm_found, com_alive, ecu_alive, network_in_use, sleeping, k_conditions };

/// Network and applications. In a cycle each condition gets its value when it is first asked for: the values that were
/// given, in this order, then "no". Afterwards `values` tells how many were asked for, by the machine in the cycle and
/// then by the rules, so that whoever tries all ways through a cycle tries no more than there are.
class Conditions : public ximo::ap::statemanager::Service_handler_interface {
 public:
    void begin_cycle(std::vector<bool> values) {
        known_.fill(std::nullopt);
        values_ = std::move(values);
        asked_for_ = 0;
    }
    std::vector<bool> const& values() const { return values_; }

    bool init() override { return true; }
    void deinit() override {}
    bool nm_interface_available() const override { return ask(nm_found); }
    bool apps_keep_com_alive() const override { return ask(com_alive); }
    bool apps_keep_ecu_alive() const override { return ask(ecu_alive); }
    bool is_network_in_use() const override { return ask(network_in_use); }
    bool ecu_in_sleep_mode() const override { return ask(sleeping); }
    void request_network() override {}
    void release_network() override {}
    void standby() override {}
    void end_standby() override {}

 private:
    bool ask(Condition condition) const {
        auto& known = known_.at(condition);
        if (!known) {
            if (asked_for_ == values_.size()) {
                values_.push_back(false);
            }
            known = values_[asked_for_++];
        }
        return *known;
    }

    mutable std::array<std::optional<bool>, k_conditions> known_;
    mutable std::vector<bool> values_;
    mutable std::size_t asked_for_{0};
};

}  // namespace exploration

#endif
