#include "modelled_clients.h"

#include <stdexcept>
#include <utility>

namespace exploration {

namespace {

constexpr std::array<char const*, k_groups> k_names_of_clients{"diag::dcm", "an application", "diag::dem"};

Modelled_clients* latest_made = nullptr;

Group group_of(notifier::Client_predicate const& predicate) {
    std::optional<Group> found;
    for (unsigned group = 0; group < k_groups; ++group) {
        if (predicate(k_names_of_clients.at(group))) {
            if (found) {
                throw std::logic_error("two groups are asked at a time");
            }
            found = static_cast<Group>(group);
        }
    }
    return found.value();
}

}  // namespace

Modelled_clients::Modelled_clients() {
    latest_made = this;
}

Modelled_clients::~Modelled_clients() {
    latest_made = nullptr;
}

Modelled_clients* Modelled_clients::latest() {
    return latest_made;
}

bool Modelled_clients::request_state_change(std::string const& state, notifier::Client_predicate const& predicate,
                                            notifier::Completion_callback const& completed,
                                            std::chrono::seconds /*timeout*/) {
    asked_ = group_of(predicate);
    completed_ = completed;
    requested_.at(*asked_) = state;
    return true;
}

void Modelled_clients::answer(notifier::Callback_status status) {
    auto const group = std::exchange(asked_, std::nullopt).value();
    auto const result = status == notifier::Callback_status::succeeded
                            ? notifier::Component_client_return_type::succeeded
                            : notifier::Component_client_return_type::general_error;
    completed_(status, {{k_names_of_clients.at(group), result}});
}

}  // namespace exploration

namespace client_state_notifier {

std::unique_ptr<Client_states> create_client_states(std::string const& /*current_state*/,
                                                    Status_callback const& /*status_callback*/) {
    return std::make_unique<exploration::Modelled_clients>();
}

}  // namespace client_state_notifier
