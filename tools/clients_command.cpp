// page_commands.cpp calls `clients_text` or `clients_json`, once, or again and again where it watches. Each puts the
// clients that are connected beside the counts that the page keeps by name.

#include "tools/commands.h"
#include "tools/page/words.h"
#include "tools/page_commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>

namespace statectl {

namespace {

using nlohmann::json;
using status::Client;
using status::Name;

double seconds(Number nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e9;
}

std::string counts_text(Name<Number> const* name) {
    if (name == nullptr) {
        return "";
    }
    std::array<char, 96> text{};
    auto const number = [](Number value) { return static_cast<unsigned long long>(value); };
    std::snprintf(text.data(), text.size(), "%5llu %7llu %6llu %4llu %9llu %8llu  %-8s %s", number(name->asked),
                  number(name->in_time), number(name->failed), number(name->late), number(name->timed_out),
                  number(name->vanished), span_text(name->longest).c_str(), span_text(mean_of(*name)).c_str());
    return text.data();
}

std::string row(std::string const& name, std::string const& pid, std::string const& user, std::string const& state,
                std::string const& since, std::string const& answer, std::string const& counts) {
    std::array<char, 320> text{};
    std::snprintf(text.data(), text.size(), "%-20s %7s %-14s %-9s %-12s %-10s %s", name.c_str(), pid.c_str(),
                  user.c_str(), state.c_str(), since.c_str(), answer.c_str(), counts.c_str());
    std::string line(text.data());
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

/// Which user each name belongs to, as a file tells: "NAME USER" a line.
using Owners = std::map<std::string, std::string>;

Owners owners_in(std::string const& path) {
    Owners owners;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        auto const space = line.find_last_of(" \t");
        if (!line.empty() && line[0] != '#' && space != std::string::npos) {
            owners[line.substr(0, line.find_last_not_of(" \t", space) + 1)] = line.substr(space + 1);
        }
    }
    return owners;
}

// The user that the client should be one of; empty when it is, or when nobody says so.
std::string missing_owner(Owners const& owners, Client<Number> const& client) {
    auto const owner = owners.find(text_of(client.name));
    return owner == owners.end() || owner->second == user_word(client.uid) ? "" : owner->second;
}

std::string user_text(Owners const& owners, Client<Number> const& client) {
    auto const unit = unit_of(client.pid);
    auto const owner = missing_owner(owners, client);
    return user_word(client.uid) + (unit.empty() ? "" : " " + unit) + (owner.empty() ? "" : " (not " + owner + "!)");
}

std::string clients_text(Snapshot const& page, Owners const& owners) {
    auto text = row("NAME", "PROCESS", "USER", "STATE", "SINCE", "ANSWER",
                    "ASKED IN TIME FAILED LATE TIMED OUT VANISHED  LONGEST  MEAN");
    for (auto const& client : page.clients) {
        auto const name = text_of(client.name);
        text +=
            row(quoted(name), std::to_string(client.pid), user_text(owners, client), shown(text_of(client.state)),
                span_text(client.since, page.now), answer_word(client.answer), counts_text(record_of(page, client)));
    }
    for (auto const& name : page.names) {
        if (name.connections == 0) {
            text += row(quoted(text_of(name.name)), "-", "-", "-", "gone", "-", counts_text(&name));
        }
    }
    if (page.server.clients_untold + page.server.names_untold != 0) {
        text += std::to_string(page.server.clients_untold) + " clients and " +
                std::to_string(page.server.names_untold) + " names had no room on the page\n";
    }
    return text;
}

json client_json(Snapshot const& page, Client<Number> const& client, Owners const& owners) {
    auto const unit = unit_of(client.pid);
    auto const owner = missing_owner(owners, client);
    return {
        {"name", text_of(client.name)},
        {"pid", client.pid},
        {"uid", client.uid},
        {"user", user_word(client.uid)},
        {"unit", unit.empty() ? json() : json(unit)},
        {"should_be", owner.empty() ? json() : json(owner)},
        {"state", text_of(client.state)},
        {"since_s", seconds(page.now > client.since ? page.now - client.since : 0)},
        {"answer", answer_word(client.answer)},
        {"status", client.status},
        {"answered_after_s", client.answered_at == 0 ? json() : json(seconds(client.answered_at - client.asked_at))}};
}

json name_json(Name<Number> const& name) {
    return {{"name", text_of(name.name)},      {"connections", name.connections}, {"asked", name.asked},
            {"in_time", name.in_time},         {"failed", name.failed},           {"late", name.late},
            {"timed_out", name.timed_out},     {"vanished", name.vanished},       {"longest_s", seconds(name.longest)},
            {"mean_s", seconds(mean_of(name))}};
}

json clients_json(Snapshot const& page, Owners const& owners) {
    auto clients = json::array();
    for (auto const& client : page.clients) {
        clients.push_back(client_json(page, client, owners));
    }
    auto names = json::array();
    for (auto const& name : page.names) {
        names.push_back(name_json(name));
    }
    return {{"running", page.is_alive},
            {"clients", clients},
            {"names", names},
            {"untold", page.server.clients_untold + page.server.names_untold}};
}

}  // namespace

void add_clients_command(CLI::App& program, Action& chosen) {
    auto const owners = std::make_shared<std::string>();
    auto& command =
        add_page_command(program, chosen, "clients", "List the clients of a suspend, and how they have answered",
                         {[owners](Snapshot const& page) { return clients_text(page, owners_in(*owners)); },
                          [owners](Snapshot const& page) { return clients_json(page, owners_in(*owners)); }});
    command.add_option("--owners", *owners, "File of lines \"NAME USER\": whose each name is; others are marked")
        ->check(CLI::ExistingFile);
}

}  // namespace statectl
