#include "bench/tour/rows.h"

namespace bench::tour {

std::string name(Row const& row) {
    return row.state + ' ' + std::to_string(row.number);
}

std::vector<Row> const& rows() {
    static auto const& all = *new std::vector<Row>{
        {"Starting up", 1, "network management is not used", "Running"},
        {"Starting up", 2, "the network manager's services are found", "Running"},
        {"Starting up", 3, "they are not found yet", "stay"},
        {"Running", 1, "command NmControlled", "NM Controlled"},
        {"Running", 2, "command NMControlledPrepareSD", "NM Controlled, to prepare afterwards"},
        {"Running", 3, "command PrepareSD", "Preparing"},
        {"Running", 4, "command Shutdown", "Shutting down"},
        {"Running", 5, "none of these, or network management is not used", "stay"},
        {"NM Controlled", 1, "command Run", "Running"},
        {"NM Controlled", 2, "network asleep, applications keep the ECU alive", "Post Run"},
        {"NM Controlled", 3, "command Shutdown", "Shutting down"},
        {"NM Controlled", 4, "network asleep, nobody keeps the ECU alive", "Shutting down"},
        {"NM Controlled", 5, "command PrepareSD", "Preparing"},
        {"NM Controlled", 6, "as row 4, but to prepare", "Preparing"},
        {"NM Controlled", 7, "none of these", "stay"},
        {"Post Run", 1, "applications keep communication alive", "NM Controlled"},
        {"Post Run", 2, "command Shutdown", "Shutting down"},
        {"Post Run", 3, "nobody keeps the ECU alive, or for too long", "Shutting down"},
        {"Post Run", 4, "command Run", "Running"},
        {"Post Run", 5, "command PrepareSD", "Preparing"},
        {"Post Run", 6, "as row 3, but to prepare", "Preparing"},
        {"Post Run", 7, "none of these", "stay, and count down"},
        {"Preparing", 1, "command Run", "Resuming"},
        {"Preparing", 2, "clients are still asked to stand by", "stay"},
        {"Preparing", 3, "all have answered", "PreparedSD"},
        {"PreparedSD", 1, "command Run", "Resuming"},
        {"PreparedSD", 2, "command Shutdown", "Shutting down, the fast way"},
        {"PreparedSD", 3, "none of these", "stay"},
        {"Resuming", 1, "command Shutdown", "Shutting down"},
        {"Resuming", 2, "clients are still asked to resume", "stay"},
        {"Resuming", 3, "all have answered", "Running"},
        {"Shutting down", 1, "always", "stay"},
    };
    return all;
}

}  // namespace bench::tour
