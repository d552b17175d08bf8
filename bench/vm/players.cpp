#include "bench/vm/players.h"

#include "bench/vehicle/player_events.h"
#include "bench/vehicle/surroundings.h"

#include <algorithm>
#include <utility>

namespace bench::vm {

using nlohmann::json;
using vehicle::Client_record;
using vehicle::Timeline;

namespace {

constexpr char const* k_suffix = ".service";

/// How a neighbour is called, and how its unit: those whose names begin like that, or the one of that name.
struct Naming {
    std::string neighbour;
    std::string unit;
};

std::vector<Naming> const& namings() {
    static auto const& namings = *new std::vector<Naming>{{"node", "vehicle-network-manager"},
                                                          {"other node", "vehicle-network-neighbour"},
                                                          {"application ", "vehicle-application@"},
                                                          {"", "vehicle-client@"}};
    return namings;
}

bool begins_with(std::string const& text, std::string const& beginning) {
    return text.rfind(beginning, 0) == 0;
}

bool ends_with(std::string const& text, char last) {
    return !text.empty() && text.back() == last;
}

std::string unit_of(std::string const& neighbour) {
    for (auto const& naming : namings()) {
        bool const is_family = ends_with(naming.unit, '@');
        if (is_family ? begins_with(neighbour, naming.neighbour) : neighbour == naming.neighbour) {
            return naming.unit + (is_family ? neighbour.substr(naming.neighbour.size()) : "") + k_suffix;
        }
    }
    return "";
}

/// Empty for units that are no players.
std::string neighbour_of(std::string const& unit) {
    auto const name = unit.substr(0, unit.rfind(k_suffix));
    for (auto const& naming : namings()) {
        bool const is_family = ends_with(naming.unit, '@');
        if (is_family ? begins_with(name, naming.unit) : name == naming.unit) {
            return naming.neighbour + (is_family ? name.substr(naming.unit.size()) : "");
        }
    }
    return "";
}

std::string quoted(std::string const& text) {
    std::string quoted = "'";
    for (char const character : text) {
        quoted += character == '\'' ? std::string(R"('\'')") : std::string(1, character);
    }
    return quoted + "'";
}

}  // namespace

Players::Players(json const& configuration, std::vector<std::string> const& clients)
    : applications_(vehicle::application_names(configuration)), limits_(vehicle::limits_in(configuration)) {
    for (auto const& name : clients) {
        clients_.emplace_back(name);
    }
}

std::vector<vehicle::Client_status> Players::clients() const {
    std::vector<vehicle::Client_status> statuses;
    for (auto const& client : clients_) {
        statuses.push_back(client.status());
    }
    return statuses;
}

// Opened for both, the FIFO takes the command whether or not somebody reads.
std::string Players::line_for(std::string const& name, json command, unsigned id) {
    auto const unit = unit_of(name);
    command["id"] = id;
    return "systemctl start " + quoted(unit) + " && echo " + quoted(command.dump()) + " 1<>" +
           quoted("/run/vehicle/" + unit);
}

std::optional<json> Players::take_answer(unsigned id) {
    auto const found = answers_.find(id);
    if (found == answers_.end()) {
        return std::nullopt;
    }
    auto answer = std::move(found->second);
    answers_.erase(found);
    return answer;
}

void Players::note(std::string const& name, json const& command) {
    auto* const found = client(name);
    if (found != nullptr && command.contains("as")) {
        found->set_manner(command.at("as").get<std::string>());
    }
}

Timeline Players::hear(Entry const& entry, std::function<std::int64_t(std::int64_t)> const& to_host_time) {
    auto const name = neighbour_of(entry.unit);
    if (name.empty()) {
        return {};
    }
    auto* const found = client(name);
    if (found != nullptr && entry.message.find("Main process exited") != std::string::npos) {
        return {found->note_end(to_host_time(entry.time))};
    }
    if (found != nullptr && entry.job == "start done") {
        found->begin();
        return {};
    }
    auto message = json::parse(entry.message, nullptr, false);
    if (!message.is_object() || !message.contains("t") || !message["t"].is_number_integer()) {
        return {};
    }
    message["t"] = to_host_time(message["t"].get<std::int64_t>());
    return hear_message(name, message);
}

Timeline Players::hear_message(std::string const& name, json const& message) {
    if (message.contains("answer") && message.contains("id") && message["id"].is_number_unsigned()) {
        answers_[message["id"].get<unsigned>()] = message;
        return {};
    }
    if (auto* const found = client(name)) {
        auto event = found->hear(message, limits_);
        return event ? Timeline{std::move(*event)} : Timeline{};
    }
    return name == "node" ? vehicle::events_of_node(message) : Timeline{};
}

Client_record* Players::client(std::string const& name) {
    auto const found = std::find_if(clients_.begin(), clients_.end(),
                                    [&](auto const& candidate) { return candidate.status().name == name; });
    return found == clients_.end() ? nullptr : &*found;
}

void Players::begin() {
    for (auto& client : clients_) {
        client.begin();
    }
    answers_.clear();
}

}  // namespace bench::vm
