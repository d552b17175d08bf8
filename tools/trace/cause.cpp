#include "tools/trace/cause.h"

#include <algorithm>
#include <cctype>

namespace statectl::trace {

namespace {

using Sentence = std::string (*)(Situation const& situation);

/// A transition, the commands that lead along it, and what does when none of them has.
struct Row {
    char const* from;
    char const* to;
    std::vector<std::string> commands;
    Sentence otherwise;
};

std::string by_network_manager(Situation const& situation) {
    return situation.uses_network ? "the network manager is found" : "network management is not used";
}

std::string by_holders_of_the_ecu(Situation const& situation) {
    return "the network sleeps, " + enumeration(situation.ecu) + " keeps the ECU alive";
}

std::string by_sleep(Situation const& /*situation*/) {
    return "the network sleeps, nobody keeps the ECU alive";
}

std::string by_holders_of_the_network(Situation const& situation) {
    return enumeration(situation.network) + " keeps communication alive";
}

std::string by_release(Situation const& situation) {
    return situation.ecu.empty() ? "nobody keeps the ECU alive"
                                 : enumeration(situation.ecu) + " kept the ECU alive for too long";
}

std::string by_answers(Situation const& situation) {
    return situation.late.empty() ? "all clients have answered"
                                  : enumeration(situation.late) + " did not answer in time";
}

std::string by_nothing_seen(Situation const& /*situation*/) {
    return "a command from before the trace";
}

std::vector<Row> const& rows() {
    static std::vector<Row> const all{
        {"Starting up", "Running", {}, by_network_manager},
        {"Running", "NM Controlled", {"NmControlled", "NMControlledPrepareSD"}, by_nothing_seen},
        {"Running", "Preparing", {"PrepareSD"}, by_nothing_seen},
        {"Running", "Shutting down", {"Shutdown"}, by_nothing_seen},
        {"NM Controlled", "Running", {"Run"}, by_nothing_seen},
        {"NM Controlled", "Post Run", {}, by_holders_of_the_ecu},
        {"NM Controlled", "Shutting down", {"Shutdown"}, by_sleep},
        {"NM Controlled", "Preparing", {"PrepareSD"}, by_sleep},
        {"Post Run", "NM Controlled", {}, by_holders_of_the_network},
        {"Post Run", "Shutting down", {"Shutdown"}, by_release},
        {"Post Run", "Running", {"Run"}, by_nothing_seen},
        {"Post Run", "Preparing", {"PrepareSD"}, by_release},
        {"Preparing", "Resuming", {"Run"}, by_nothing_seen},
        {"Preparing", "PreparedSD", {}, by_answers},
        {"PreparedSD", "Resuming", {"Run"}, by_nothing_seen},
        {"PreparedSD", "Shutting down", {"Shutdown"}, by_nothing_seen},
        {"Resuming", "Shutting down", {"Shutdown"}, by_nothing_seen},
        {"Resuming", "Running", {}, by_answers},
    };
    return all;
}

}  // namespace

Cause cause_of(std::string const& from, std::string const& to, Situation const& situation) {
    auto const row =
        std::find_if(rows().begin(), rows().end(), [&](Row const& one) { return one.from == from && one.to == to; });
    if (row == rows().end()) {
        return {"unknown", false};
    }
    auto const& commands = row->commands;
    if (std::find(commands.begin(), commands.end(), situation.command) != commands.end()) {
        return {"command " + situation.command, true};
    }
    return {row->otherwise(situation), false};
}

std::string name_text(std::string const& name) {
    bool const is_word = !name.empty() && std::isalpha(static_cast<unsigned char>(name.front())) != 0;
    return is_word ? name : '"' + name + '"';
}

std::string enumeration(std::vector<std::string> const& names, std::size_t most) {
    if (names.empty()) {
        return "somebody";
    }
    auto text = name_text(names.front());
    auto const shown = std::min(names.size(), most);
    for (std::size_t i = 1; i < shown; ++i) {
        text += (i + 1 == names.size() ? " and " : ", ") + name_text(names[i]);
    }
    return names.size() > most ? text + " and " + std::to_string(names.size() - most) + " more" : text;
}

}  // namespace statectl::trace
