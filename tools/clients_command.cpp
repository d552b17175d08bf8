// page_commands.cpp calls `clients_text` or `clients_json`, once, or again and again where it watches. Each puts the
// clients that are connected beside the counts that the page keeps by name.

#include "tools/commands.h"
#include "tools/page/words.h"
#include "tools/page_commands.h"
#include "tools/table.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>

#include <pwd.h>

namespace statectl {

namespace {

using nlohmann::json;
using status::Client;
using status::Name;

double seconds(Number nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e9;
}

// Most answers take less than a tenth of a second.
std::string answer_text(Number nanoseconds) {
    constexpr Number k_millisecond = 1'000'000;
    auto const milliseconds = nanoseconds / k_millisecond;
    return milliseconds < 1'000 ? std::to_string(milliseconds) + " ms" : span_text(nanoseconds);
}

std::vector<std::string> counts_of(Name<Number> const* name) {
    if (name == nullptr) {
        return {};
    }
    std::vector<std::string> cells;
    for (auto const count : {name->asked, name->in_time, name->failed, name->late, name->timed_out, name->vanished}) {
        cells.push_back(std::to_string(count));
    }
    bool const has_answered = name->in_time + name->failed + name->late != 0;
    cells.push_back(has_answered ? answer_text(name->longest) : "-");
    cells.push_back(name->in_time + name->failed != 0 ? answer_text(mean_of(*name)) : "-");
    return cells;
}

void add_row(Table& table, std::vector<std::string> cells, Name<Number> const* name, Mark mark = Mark::plain) {
    for (auto& cell : counts_of(name)) {
        cells.push_back(std::move(cell));
    }
    table.add(std::move(cells), mark);
}

/// Which user each name belongs to, as a file tells: "NAME USER" a line.
using Owners = std::map<std::string, std::string>;

// By name, or by number where a machine has no name for it.
bool is_user(std::string const& word) {
    return ::getpwnam(word.c_str()) != nullptr || word.find_first_not_of("0123456789") == std::string::npos;
}

Owners owners_in(std::string const& path) {
    Owners owners;
    std::ifstream file(path);
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.empty() || line[0] == '#') {
            continue;
        }
        auto const wrong = [&](std::string const& what) {
            return std::runtime_error(std::string(path).append(": line ").append(std::to_string(number)).append(what));
        };
        auto const space = line.find_last_of(" \t");
        auto const name = space == std::string::npos ? "" : line.substr(0, line.find_last_not_of(" \t", space) + 1);
        auto const user = line.substr(space + 1);
        if (name.empty() || user.empty()) {
            throw wrong(" is not \"NAME USER\"");
        }
        if (!is_user(user)) {
            throw wrong(": there is no user " + quoted(user));
        }
        owners[name] = user;
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

bool is_bad(Client<Number> const& client) {
    return client.answer == static_cast<Number>(status::Answer::failed) ||
           client.answer == static_cast<Number>(status::Answer::timed_out) ||
           client.answer == static_cast<Number>(status::Answer::late);
}

std::string clients_text(Snapshot const& page, Owners const& owners) {
    Table table({"NAME", "PROCESS", "USER", "STATE", "SINCE", "ANSWER", "ASKED", "IN TIME", "FAILED", "LATE",
                 "TIMED OUT", "VANISHED", "LONGEST", "MEAN"});
    for (auto const& client : page.clients) {
        auto const mark = is_bad(client) || !missing_owner(owners, client).empty() ? Mark::red : Mark::plain;
        add_row(table,
                {quoted(text_of(client.name)), std::to_string(client.pid), user_text(owners, client),
                 shown(text_of(client.state)), span_text(client.since, page.now), answer_word(client.answer)},
                record_of(page, client), mark);
    }
    for (auto const& name : page.names) {
        if (name.connections == 0) {
            add_row(table, {quoted(text_of(name.name)), "-", "-", "-", "gone", "-"}, &name);
        }
    }
    auto text = table.text();
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
        {"digest", digest_text(client.name_digest)},
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
    return {{"name", text_of(name.name)},
            {"digest", digest_text(name.digest)},
            {"connections", name.connections},
            {"asked", name.asked},
            {"in_time", name.in_time},
            {"failed", name.failed},
            {"late", name.late},
            {"timed_out", name.timed_out},
            {"vanished", name.vanished},
            {"longest_s", seconds(name.longest)},
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
