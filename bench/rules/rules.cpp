#include "bench/rules/rules.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace bench::rules {

namespace {

template <Command k_command>
bool is(Situation const& now) {
    return now.command() == k_command;
}

bool always(Situation const& /*now*/) {
    return true;
}

bool nobody_keeps_ecu(Situation const& now) {
    return now.network_sleeps() && !now.ecu_is_kept();
}

bool is_released(Situation const& now) {
    return !now.ecu_is_kept() || now.time_is_over();
}

constexpr char const* k_nm_to_running = "Transition form NM controled state to Running possible.";
constexpr char const* k_nm_to_post_run = "Transition form NM controled state to Post Run possible.";
constexpr char const* k_nm_to_shutting_down = "Transition form NM controled state to Shutting Down possible.";
constexpr char const* k_nm_to_preparing = "Transition form NM controled state to Preparing (transient) possible.";
constexpr char const* k_post_run_to_shutting_down = "Transition form Post Run state to Shutting Down possible.";
constexpr char const* k_post_run_to_preparing = "Transition form Post Run state to Preparing (transient) possible.";

}  // namespace

char const* name(State state) {
    constexpr std::array<char const*, 9> k_names{"Starting up", "Running",       "NM Controlled",
                                                 "Post Run",    "Shutting down", "Preparing",
                                                 "PreparedSD",  "Resuming",      "stay"};
    return k_names.at(static_cast<unsigned>(state));
}

std::string name(Row const& row) {
    return std::string(name(row.from)) + ' ' + std::to_string(row.number);
}

// clang-format off
std::vector<Row> const& rows() {
    using S = State;
    using C = Command;
    using I = Intention;
    static auto const& all = *new std::vector<Row>{
        {S::starting_up, 1, "network management is not used", "Running",
         [](Situation const& now) { return !now.nm_is_used(); }, S::running, I::stays, "", "no network management"},
        {S::starting_up, 2, "the network manager's services are found", "Running",
         [](Situation const& now) { return now.nm_is_found(); }, S::running, I::stays, "", "found"},
        {S::starting_up, 3, "they are not found yet", "stay", always, S::stay, I::stays,
         "Transition form startup to running not possible. Waiting for nm interface.", ""},

        {S::running, 1, "command NmControlled", "NM Controlled",
         [](Situation const& now) { return is<C::nm_controlled>(now) && now.nm_is_used(); }, S::nm_controlled, I::ends,
         "Transition from Running to NM controlled possible. Prepare SD flag set to false state.", "n"},
        {S::running, 2, "command NMControlledPrepareSD", "NM Controlled, to prepare afterwards",
         [](Situation const& now) { return is<C::nm_controlled_prepare_sd>(now) && now.nm_is_used(); },
         S::nm_controlled, I::begins,
         "Transition from Running to NM controlled possible.  Prepare SD flag set to true state.", "s"},
        {S::running, 3, "command PrepareSD", "Preparing", is<C::prepare_sd>, S::preparing, I::stays,
         "Transition form Running to Preparing Shutting Down possible.", "p"},
        {S::running, 4, "command Shutdown", "Shutting down", is<C::shutdown>, S::shutting_down, I::stays,
         "Transition form Running to Shutting Down possible.", "power"},
        {S::running, 5, "none of these, or network management is not used", "stay", always, S::stay, I::stays, "", ""},

        {S::nm_controlled, 1, "command Run", "Running", is<C::run>, S::running, I::ends, k_nm_to_running, "r"},
        {S::nm_controlled, 2, "network asleep, applications keep the ECU alive", "Post Run",
         [](Situation const& now) { return now.network_sleeps() && now.ecu_is_kept(); }, S::post_run, I::stays,
         k_nm_to_post_run, "asleep, ECU kept"},
        {S::nm_controlled, 3, "command Shutdown", "Shutting down", is<C::shutdown>, S::shutting_down, I::ends,
         k_nm_to_shutting_down, "power"},
        {S::nm_controlled, 4, "network asleep, nobody keeps the ECU alive", "Shutting down",
         [](Situation const& now) { return nobody_keeps_ecu(now) && !now.is_to_prepare(); }, S::shutting_down, I::ends,
         k_nm_to_shutting_down, "asleep after n"},
        {S::nm_controlled, 5, "command PrepareSD", "Preparing", is<C::prepare_sd>, S::preparing, I::ends,
         k_nm_to_preparing, "p"},
        {S::nm_controlled, 6, "as row 4, but to prepare", "Preparing",
         [](Situation const& now) { return nobody_keeps_ecu(now) && now.is_to_prepare(); }, S::preparing, I::ends,
         k_nm_to_preparing, "asleep after s"},
        {S::nm_controlled, 7, "none of these", "stay", always, S::stay, I::stays, "", ""},

        {S::post_run, 1, "applications keep communication alive", "NM Controlled",
         [](Situation const& now) { return now.com_is_kept(); }, S::nm_controlled, I::stays,
         "Transition form Post Run state to NmControlled possible.", "COM kept"},
        {S::post_run, 2, "command Shutdown", "Shutting down", is<C::shutdown>, S::shutting_down, I::ends,
         k_post_run_to_shutting_down, "power"},
        {S::post_run, 3, "nobody keeps the ECU alive, or for too long", "Shutting down",
         [](Situation const& now) { return is_released(now) && !now.is_to_prepare(); }, S::shutting_down, I::ends,
         k_post_run_to_shutting_down, "released after n"},
        {S::post_run, 4, "command Run", "Running", is<C::run>, S::running, I::ends,
         "Transition form Post Run state to Running possible.", "r"},
        {S::post_run, 5, "command PrepareSD", "Preparing", is<C::prepare_sd>, S::preparing, I::ends,
         k_post_run_to_preparing, "p"},
        {S::post_run, 6, "as row 3, but to prepare", "Preparing",
         [](Situation const& now) { return is_released(now) && now.is_to_prepare(); }, S::preparing, I::ends,
         k_post_run_to_preparing, "released after s"},
        {S::post_run, 7, "none of these", "stay, and count down", always, S::stay, I::stays, "", ""},

        {S::preparing, 1, "command Run", "Resuming", is<C::run>, S::resuming, I::stays,
         "Transition from Preparing to Resuming", "r"},
        {S::preparing, 2, "clients are still asked to stand by", "stay",
         [](Situation const& now) { return now.clients_are_asked(); }, S::stay, I::stays, "", ""},
        {S::preparing, 3, "all have answered", "PreparedSD", always, S::prepared_sd, I::stays, "", "answered"},

        {S::prepared_sd, 1, "command Run", "Resuming", is<C::run>, S::resuming, I::stays,
         "Transition from PreparedSD to Resuming", "r"},
        {S::prepared_sd, 2, "command Shutdown", "Shutting down, the fast way", is<C::shutdown>, S::shutting_down,
         I::stays, "Transition from PreparedSD to Shutting Down", "power, the fast way"},
        {S::prepared_sd, 3, "none of these", "stay", always, S::stay, I::stays, "", ""},

        {S::resuming, 1, "command Shutdown", "Shutting down", is<C::shutdown>, S::shutting_down, I::stays,
         "Transition form Resuming state to Shutting Down possible.", "power"},
        {S::resuming, 2, "clients are still asked to resume", "stay",
         [](Situation const& now) { return now.clients_are_asked(); }, S::stay, I::stays, "", ""},
        {S::resuming, 3, "all have answered", "Running", always, S::running, I::stays, "", "answered"},

        {S::shutting_down, 1, "always", "stay", always, S::stay, I::stays, "", ""},
    };
    return all;
}
// clang-format on

Row const& deciding_row(State state, Situation const& situation) {
    auto const row = std::find_if(rows().begin(), rows().end(), [&](Row const& candidate) {
        return candidate.from == state && candidate.holds(situation);
    });
    if (row == rows().end()) {
        throw std::logic_error(std::string("No row holds in ") + name(state));
    }
    return *row;
}

}  // namespace bench::rules
