#include "ara/exec/state_client.h"

#include "ara/core/service_notification.h"
#include "bus_connection.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

namespace ara::exec {

namespace {

// Names that stand in a unit name as they are; '-' separates the group from the state.
bool is_name(std::string const& text) {
    return !text.empty() && text.size() <= 100 && std::all_of(text.begin(), text.end(), [](unsigned char character) {
        return std::isalnum(character) != 0 || character == '_';
    });
}

std::string target_of(std::string const& function_group, std::string const& state) {
    return function_group + "-" + state + ".target";
}

struct Unit_state {
    std::string state;
    std::string active;
};

// One entry of ListUnitsByPatterns: name, description, load, active and sub state, follower, path, job.
bool read_unit(sd_bus_message* reply, std::string const& function_group, std::vector<Unit_state>& units) {
    char const* name = nullptr;
    char const* active = nullptr;
    if (sd_bus_message_read(reply, "(ssssssouso)", &name, nullptr, nullptr, &active, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr) <= 0) {
        return false;
    }
    std::string_view state(name);
    constexpr std::string_view suffix = ".target";
    if (state.size() > function_group.size() + 1 + suffix.size()) {
        state.remove_prefix(function_group.size() + 1);
        state.remove_suffix(suffix.size());
        units.push_back({std::string(state), active});
    }
    return true;
}

std::vector<Unit_state> read_units(sd_bus_message* reply, std::string const& function_group) {
    std::vector<Unit_state> units;
    if (sd_bus_message_enter_container(reply, 'a', "(ssssssouso)") > 0) {
        while (read_unit(reply, function_group, units)) {
        }
    }
    return units;
}

Unit_state const* find(std::vector<Unit_state> const& units, std::string_view active) {
    auto const found =
        std::find_if(units.begin(), units.end(), [&](auto const& unit) { return unit.active == active; });
    return found != units.end() ? &*found : nullptr;
}

}  // namespace

StateClient::StateClient() : connection_(std::make_unique<Connection>()) {
    connection_->connect(std::chrono::steady_clock::now() + k_connect_time_limit);
}

StateClient::~StateClient() {
    std::chrono::microseconds limit = k_end_time_limit;
    if (auto const watchdog = ara::core::watchdog_time()) {
        limit = std::min(limit, *watchdog / 2);
    }
    connection_->finish(limit);
}

State_client_result StateClient::SetState(std::string const& function_group, std::string const& state) {
    if (!is_name(function_group) || !is_name(state)) {
        return State_client_result::kUnknownState;
    }
    auto const unit = target_of(function_group, state);
    auto const answer = connection_->request("StartUnit", unit, [&unit](sd_bus_message* message) {
        return sd_bus_message_append(message, "ss", unit.c_str(), "replace");
    });
    if (answer.reply) {
        return State_client_result::kSuccess;
    }
    return answer.error == "org.freedesktop.systemd1.NoSuchUnit" ? State_client_result::kUnknownState
                                                                 : State_client_result::kRefused;
}

State_client_result StateClient::GetState(std::string const& function_group, std::string& state,
                                          Function_group_state_transition& transition) {
    if (!is_name(function_group)) {
        return State_client_result::kUnknownState;
    }
    auto const pattern = target_of(function_group, "*");
    auto const answer = connection_->ask("ListUnitsByPatterns", [&pattern](sd_bus_message* message) {
        return sd_bus_message_append(message, "asas", 0, 1, pattern.c_str());
    });
    if (!answer.reply) {
        return State_client_result::kRefused;
    }
    auto const units = read_units(answer.reply.get(), function_group);
    auto const* const coming = find(units, "activating");
    auto const* const current = coming != nullptr ? coming : find(units, "active");
    if (current == nullptr) {
        return State_client_result::kUnknownState;
    }
    state = current->state;
    transition =
        coming != nullptr ? Function_group_state_transition::kInTransition : Function_group_state_transition::kReached;
    return State_client_result::kSuccess;
}

}  // namespace ara::exec
