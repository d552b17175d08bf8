#include "status/rows.h"

#include <array>

namespace status {

namespace {

// The hypervisor's commands, by their numbers.
constexpr std::uint64_t k_none = 0;
constexpr std::uint64_t k_run = 1;
constexpr std::uint64_t k_nm_controlled = 2;
constexpr std::uint64_t k_nm_controlled_prepare_sd = 3;
constexpr std::uint64_t k_prepare_sd = 4;
constexpr std::uint64_t k_shutdown = 5;

struct Known_row {
    State from;
    State to;
    std::uint64_t command;  // none: a condition
    std::uint64_t number;
};

// Where a command and a condition lead to the same state, the command is tested first. A row of two states that a
// setting tells apart (Starting up) is put right below.
constexpr std::array<Known_row, 23> k_rows{{
    {State::starting_up, State::running, k_none, 2},
    {State::running, State::nm_controlled, k_nm_controlled, 1},
    {State::running, State::nm_controlled, k_nm_controlled_prepare_sd, 2},
    {State::running, State::preparing, k_prepare_sd, 3},
    {State::running, State::shutting_down, k_shutdown, 4},
    {State::nm_controlled, State::running, k_run, 1},
    {State::nm_controlled, State::post_run, k_none, 2},
    {State::nm_controlled, State::shutting_down, k_shutdown, 3},
    {State::nm_controlled, State::shutting_down, k_none, 4},
    {State::nm_controlled, State::preparing, k_prepare_sd, 5},
    {State::nm_controlled, State::preparing, k_none, 6},
    {State::post_run, State::nm_controlled, k_none, 1},
    {State::post_run, State::shutting_down, k_shutdown, 2},
    {State::post_run, State::shutting_down, k_none, 3},
    {State::post_run, State::running, k_run, 4},
    {State::post_run, State::preparing, k_prepare_sd, 5},
    {State::post_run, State::preparing, k_none, 6},
    {State::preparing, State::resuming, k_run, 1},
    {State::preparing, State::prepared_sd, k_none, 3},
    {State::prepared_sd, State::resuming, k_run, 1},
    {State::prepared_sd, State::shutting_down, k_shutdown, 2},
    {State::resuming, State::shutting_down, k_shutdown, 1},
    {State::resuming, State::running, k_none, 3},
}};

}  // namespace

Row row_of(std::uint64_t from, std::uint64_t to, std::uint64_t command, bool nm_usage) {
    for (auto const& row : k_rows) {
        if (static_cast<std::uint64_t>(row.from) == from && static_cast<std::uint64_t>(row.to) == to &&
            (row.command == k_none || row.command == command)) {
            bool const is_without_network = row.from == State::starting_up && !nm_usage;
            return {is_without_network ? 1 : row.number, row.command};
        }
    }
    return {0, k_none};
}

Condition condition_of(std::uint64_t state) {
    switch (static_cast<State>(state)) {
        case State::starting_up:
            return Condition::network_manager;
        case State::running:
        case State::prepared_sd:
            return Condition::command;
        case State::nm_controlled:
            return Condition::network;
        case State::post_run:
            return Condition::ecu_alive;
        case State::preparing:
        case State::resuming:
            return Condition::clients;
        case State::shutting_down:
            return Condition::power_off;
    }
    return Condition::nothing;
}

Blocked blocked_in(std::uint64_t state, std::uint64_t command, bool nm_usage) {
    if (command == k_none) {
        return Blocked::not_at_all;
    }
    bool needs_network = false;
    for (auto const& row : k_rows) {
        if (static_cast<std::uint64_t>(row.from) == state && row.command == command) {
            needs_network = row.from == State::running && row.to == State::nm_controlled;
            if (!needs_network || nm_usage) {
                return Blocked::not_at_all;
            }
        }
    }
    return needs_network ? Blocked::by_setting : Blocked::by_state;
}

}  // namespace status
