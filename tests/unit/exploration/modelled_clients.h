#ifndef TESTS_UNIT_EXPLORATION_MODELLED_CLIENTS_H
#define TESTS_UNIT_EXPLORATION_MODELLED_CLIENTS_H

#include "client_state_notifier/client_states.h"
#include "notifier_model.h"

#include <array>
#include <optional>
#include <string>

namespace exploration {

namespace notifier = client_state_notifier;

/// All clients of the machine and the server in front of them, without sockets and threads: whoever is asked answers
/// when the exploration says so. In this program `create_client_states` makes one of these.
class Modelled_clients : public notifier::Client_states {
 public:
    Modelled_clients();
    ~Modelled_clients() override;

    /// The one that was made last and still lives, or null.
    static Modelled_clients* latest();

    std::vector<std::pair<std::string, std::string>> get_connected_clients() const override { return {}; }
    void set_default_state(std::string const& /*state*/) override {}
    bool request_state_change(std::string const& state, notifier::Client_predicate const& predicate,
                              notifier::Completion_callback const& completed, std::chrono::seconds timeout) override;

    /// The group that was asked and has not answered.
    std::optional<Group> asked() const { return asked_; }

    /// The state last requested from a group; empty before.
    std::string const& requested_from(Group group) const { return requested_.at(group); }

    /// The group that was asked answers, or its time is over.
    void answer(notifier::Callback_status status);

 private:
    std::optional<Group> asked_;
    notifier::Completion_callback completed_;
    std::array<std::string, k_groups> requested_;
};

}  // namespace exploration

#endif
