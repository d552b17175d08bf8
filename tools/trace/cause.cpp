#include "tools/trace/cause.h"

#include "tools/page/words.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace statectl::trace {

namespace {

using Names = std::vector<std::string> Situation::*;

/// A transition, the commands that lead along it, and the row of the state's table that does when none of them has,
/// with those who are named in it.
struct Row {
    char const* from;
    char const* to;
    std::vector<std::string> commands;
    Number number;
    Names who;
};

std::vector<Row> const& rows() {
    static std::vector<Row> const all{
        {"Starting up", "Running", {}, 2, nullptr},
        {"Running", "NM Controlled", {"NmControlled", "NMControlledPrepareSD"}, 0, nullptr},
        {"Running", "Preparing", {"PrepareSD"}, 0, nullptr},
        {"Running", "Shutting down", {"Shutdown"}, 0, nullptr},
        {"NM Controlled", "Running", {"Run"}, 0, nullptr},
        {"NM Controlled", "Post Run", {}, 2, &Situation::ecu},
        {"NM Controlled", "Shutting down", {"Shutdown"}, 4, nullptr},
        {"NM Controlled", "Preparing", {"PrepareSD"}, 6, nullptr},
        {"Post Run", "NM Controlled", {}, 1, &Situation::network},
        {"Post Run", "Shutting down", {"Shutdown"}, 3, &Situation::ecu},
        {"Post Run", "Running", {"Run"}, 0, nullptr},
        {"Post Run", "Preparing", {"PrepareSD"}, 6, &Situation::ecu},
        {"Preparing", "Resuming", {"Run"}, 0, nullptr},
        {"Preparing", "PreparedSD", {}, 3, &Situation::late},
        {"PreparedSD", "Resuming", {"Run"}, 0, nullptr},
        {"PreparedSD", "Shutting down", {"Shutdown"}, 0, nullptr},
        {"Resuming", "Shutting down", {"Shutdown"}, 0, nullptr},
        {"Resuming", "Running", {}, 3, &Situation::late},
    };
    return all;
}

Number number_of(std::string const& state) {
    Number number = 0;
    while (state_word(number) != state) {
        ++number;  // it is one of the table's
    }
    return number;
}

std::optional<std::string> names(Situation const& situation, Names who) {
    if (who == nullptr) {
        return std::nullopt;
    }
    return (situation.*who).empty() ? "" : enumeration(situation.*who);
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
    if (row->number == 0) {
        return {"a command from before the trace", false};
    }
    bool const is_unused = row->from == std::string("Starting up") && !situation.uses_network;
    return {cause_text(number_of(from), is_unused ? 1 : row->number, names(situation, row->who)), false};
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
