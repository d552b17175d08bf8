#include "walk.h"

#include "statemanager/states/state_interface.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace exploration {

using ximo::ap::statemanager::states::State_interface;
namespace states = ximo::ap::statemanager::states;

namespace {

constexpr std::array<char const*, 8> k_words{"startingup",   "running",   "runnmcontrolled", "postrun",
                                             "shuttingdown", "preparing", "prepared4sd",     "resuming"};

std::string word_of(Mode mode) {
    return mode == Mode::none ? "" : mode == Mode::on ? "kOn" : "kPrepSD";
}

}  // namespace

Walk::Walk(Surroundings const& surroundings, std::string const& status_file, Driver_log& log,
           Power_off_channel const* power_off_service)
    : surroundings_(surroundings),
      power_off_service_(power_off_service),
      machine_(surroundings.nm_usage, status_file, log) {
    if (power_off_service_) {
        power_off_service_->read();
    }
    check_word(states::k_starting_up);
}

Action Walk::go(Action const& action) {
    Action done = action;
    switch (action.kind) {
        case Action::Kind::press:
            machine_.press(action.key);
            point_.press(action.key);
            break;
        case Action::Kind::cycle:
            go_through_cycle(done);
            break;
        case Action::Kind::answer:
            machine_.clients().answer(static_cast<notifier::Callback_status>(action.status));
            point_.notifier.answered();
            break;
    }
    check_requests();
    return done;
}

void Walk::go_through_cycle(Action& action) {
    Cycle const cycle = machine_.cycle(action.conditions);
    action.conditions = cycle.conditions;
    EXPECT_EQ(cycle.head, point_.head());
    EXPECT_EQ(cycle.was_refused, point_.has_ended);
    check_power_key(cycle);
    follow_notifier(cycle);
    if (cycle.entered) {
        enter(*cycle.entered, cycle.head);
    } else if (point_.state == states::k_post_run) {
        point_.ticks = std::min(point_.ticks + 1, Machine::k_knockout);
    }
    point_.prepare_sd = State_interface::get_prepare_SD_flag();
    point_.forced_shutdown = State_interface::get_forced_shutdown_flag();
}

/// The driver has entered a state; the point is still the one before.
void Walk::enter(unsigned state, Virtio_command head) {
    check_word(state);
    if (state == states::k_preparing) {
        point_.notifier.request_standby();
    } else if (state == states::k_resuming) {
        point_.notifier.request_resume();
    } else if (state == states::k_running) {
        check_clients_of_running_machine();
    } else if (state == states::k_shutting_down) {
        check_reason_of_shutdown(head);
        check_way_of_shutdown();
        point_.has_ended = !is_fast_shutdown();
    }
    point_.state = state;
    point_.ticks = 0;
    if (!point_.queue.empty()) {
        point_.queue.pop_front();
    }
}

/// Preparing and resuming ask the notifier, and end in the very cycle in which its sequence does.
void Walk::follow_notifier(Cycle const& cycle) {
    bool const preparing = point_.state == states::k_preparing && cycle.head != Virtio_command::run;
    bool const resuming = point_.state == states::k_resuming && cycle.head != Virtio_command::shutdown;
    if (!preparing && !resuming) {
        return;
    }
    point_.notifier.check();
    if (point_.notifier.is_running()) {
        EXPECT_EQ(cycle.entered, std::nullopt);
    } else {
        EXPECT_EQ(cycle.entered, preparing ? states::k_prepared_sd : states::k_running);
    }
}

void Walk::check_word(unsigned state) {
    EXPECT_EQ(machine_.read_words(), k_words.at(state)) << "the word of " << name_of(state);
}

/// A power key that waits is taken as soon as a state accepts it.
void Walk::check_power_key(Cycle const& cycle) const {
    if (cycle.head != Virtio_command::shutdown) {
        return;
    }
    auto const& entered = cycle.entered;
    switch (point_.state) {
        case states::k_running:
        case states::k_resuming:
        case states::k_prepared_sd:
            EXPECT_EQ(entered, states::k_shutting_down);
            break;
        case states::k_nm_controlled:
            EXPECT_EQ(entered, network_sleeps() && ecu_is_kept() ? states::k_post_run : states::k_shutting_down);
            break;
        case states::k_post_run:
            EXPECT_EQ(entered, com_is_kept() ? states::k_nm_controlled : states::k_shutting_down);
            break;
        default:
            EXPECT_NE(entered, states::k_shutting_down);
    }
}

void Walk::check_reason_of_shutdown(Virtio_command head) const {
    bool const power = head == Virtio_command::shutdown;
    bool const powers_off_at_rest = !point_.prepare_sd;
    switch (point_.state) {
        case states::k_running:
        case states::k_resuming:
        case states::k_prepared_sd:
            EXPECT_TRUE(power);
            break;
        case states::k_nm_controlled:
            EXPECT_TRUE(power || (network_sleeps() && !ecu_is_kept() && powers_off_at_rest));
            break;
        case states::k_post_run:
            EXPECT_FALSE(com_is_kept());
            EXPECT_TRUE(power || ((!ecu_is_kept() || point_.ticks == Machine::k_knockout) && powers_off_at_rest));
            break;
        default:
            ADD_FAILURE() << "no way leads from " << name_of(point_.state) << " to a shutdown";
    }
}

void Walk::check_way_of_shutdown() const {
    auto const& requested = machine_.requested_of_execution_management();
    EXPECT_EQ(std::count(requested.begin(), requested.end(), "request_shutdown"), is_fast_shutdown() ? 0 : 1);
    std::string const commands = power_off_service_ ? power_off_service_->read() : "";
    EXPECT_EQ(commands.find("poweroff") != std::string::npos, is_fast_shutdown()) << commands;
}

/// The power key was pressed in a machine that is prepared, and there is a service to take it.
bool Walk::is_fast_shutdown() const {
    return point_.state == states::k_prepared_sd && surroundings_.has_power_off_service;
}

/// Whoever was told to prepare for a shutdown has been called back.
void Walk::check_clients_of_running_machine() {
    for (Group const group : {dcm, applications, dem}) {
        EXPECT_NE(machine_.clients().requested_from(group), "kPrepSD");
    }
}

void Walk::check_requests() {
    auto const& clients = machine_.clients();
    EXPECT_EQ(clients.asked(), point_.notifier.asked());
    for (Group const group : {dcm, applications, dem}) {
        EXPECT_EQ(clients.requested_from(group), word_of(point_.notifier.requested_from(group)));
    }
    EXPECT_EQ(machine_.head(), point_.head());
}

}  // namespace exploration
