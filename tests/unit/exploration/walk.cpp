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

namespace rules = bench::rules;

/// What the machine's cycle has found. Conditions are asked for in the order of the rows and only as far as one
/// decides: one that the machine should have asked for and has not is tried both ways all the same (see Conditions).
class Cycle_situation : public rules::Situation {
 public:
    Cycle_situation(Point& point, bool nm_usage, Conditions const& conditions)
        : point_(point), nm_usage_(nm_usage), conditions_(conditions) {}

    rules::Command command() const override { return static_cast<rules::Command>(point_.head()); }
    bool nm_is_used() const override { return nm_usage_; }
    bool nm_is_found() const override { return conditions_.nm_interface_available(); }
    bool network_sleeps() const override { return conditions_.ecu_in_sleep_mode(); }
    bool ecu_is_kept() const override { return conditions_.apps_keep_ecu_alive(); }
    bool com_is_kept() const override { return conditions_.apps_keep_com_alive(); }
    bool is_to_prepare() const override { return point_.prepare_sd; }
    bool time_is_over() const override { return point_.ticks == Machine::k_knockout; }
    bool clients_are_asked() const override {
        point_.notifier.check();
        return point_.notifier.is_running();
    }

 private:
    Point& point_;
    bool nm_usage_;
    Conditions const& conditions_;
};

std::string word_of(Mode mode) {
    return mode == Mode::none ? "" : mode == Mode::on ? "kOn" : "kPrepSD";
}

}  // namespace

Walk::Walk(Surroundings const& surroundings, std::string const& status_file, Driver_log& log,
           Power_off_channel const* power_off_service)
    : surroundings_(surroundings),
      power_off_service_(power_off_service),
      status_(surroundings.nm_usage),
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
    status_.check(point_);
    return done;
}

/// The machine does what the first row that holds wants, and nothing else.
void Walk::go_through_cycle(Action& action) {
    Cycle const cycle = machine_.cycle(action.conditions);
    status_.check_beat(point_);
    EXPECT_EQ(cycle.head, point_.head());
    EXPECT_EQ(cycle.was_refused, point_.has_ended);
    auto const& row = rules::deciding_row(static_cast<rules::State>(point_.state),
                                          Cycle_situation(point_, surroundings_.nm_usage, machine_.conditions()));
    bool const stays = row.to == rules::State::stay;
    action.conditions = machine_.conditions().values();
    EXPECT_EQ(cycle.entered, stays ? std::nullopt : std::optional(static_cast<unsigned>(row.to)));
    if (!stays) {
        follow(row);
    } else if (point_.state == states::k_post_run) {
        point_.ticks = std::min(point_.ticks + 1, Machine::k_knockout);
    }
    EXPECT_EQ(State_interface::get_prepare_SD_flag(), point_.prepare_sd);
    EXPECT_EQ(State_interface::get_forced_shutdown_flag(), point_.forced_shutdown);
}

/// The machine has entered a state; the point is still the one before.
void Walk::follow(rules::Row const& row) {
    auto const state = static_cast<unsigned>(row.to);
    check_word(state);
    status_.check_cause(row);
    if (state == states::k_preparing) {
        point_.notifier.request_standby();
    } else if (state == states::k_resuming) {
        point_.notifier.request_resume();
    } else if (state == states::k_running) {
        check_clients_of_running_machine();
    } else if (state == states::k_shutting_down) {
        check_way_of_shutdown();
        point_.forced_shutdown = row.from == rules::State::prepared_sd;
        point_.has_ended = !is_fast_shutdown();
    }
    if (row.intention != rules::Intention::stays) {
        point_.prepare_sd = row.intention == rules::Intention::begins;
    }
    point_.state = state;
    point_.ticks = 0;
    if (!point_.queue.empty()) {
        point_.queue.pop_front();
    }
}

void Walk::check_word(unsigned state) {
    EXPECT_EQ(machine_.read_words(), k_words.at(state)) << "the word of " << name_of(state);
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
