#include "bench/vehicle/surroundings.h"

#include "bench/vehicle/player_events.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace bench::vehicle {

namespace {

using nlohmann::json;

constexpr char const* k_node = "node";
constexpr char const* k_other_node = "other node";
constexpr char const* k_application = "application ";
constexpr char const* k_own_address = "127.0.0.11";
constexpr char const* k_other_address = "127.0.0.12";

void add_names(std::vector<std::string>& names, json const& list, char const* member) {
    for (auto const& entry : list) {
        auto name = entry.value(member, std::string());
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(std::move(name));
        }
    }
}

}  // namespace

std::vector<std::string> application_names(json const& configuration) {
    std::vector<std::string> names;
    auto const section = configuration.value("ap_statemanager", json::object());
    add_names(names, section.value("ApplicationsRequestAliveConfig", json::array()), "EcuAliveInterfaceInstance");
    add_names(names, section.value("ApplicationsRequestNetworkConfig", json::array()), "NetworkAliveInterfaceInstance");
    add_names(names, section.value("CWURequestConfig", json::array()), "CWUInterfaceInstance");
    return names;
}

Surroundings::Surroundings(std::string const& programs, json const& configuration)
    : applications_(application_names(configuration)) {
    auto const bench = std::filesystem::path(programs) / "bench";
    auto const node = (bench / "network/bench_network_node").string();
    add(k_node, {node, k_own_address, k_other_address, "--offer", "udpnm"});
    add(k_other_node, {node, k_other_address, k_own_address});
    for (auto const& name : applications_) {
        add(k_application + name, {(bench / "application/bench_application").string(), name});
    }
}

void Surroundings::add(std::string const& name, std::vector<std::string> const& words) {
    neighbours_.push_back({name, words, std::make_unique<Player>(words)});
}

Surroundings::Neighbour& Surroundings::neighbour(std::string const& name) {
    auto const found = std::find_if(neighbours_.begin(), neighbours_.end(),
                                    [&](Neighbour const& neighbour) { return neighbour.name == name; });
    if (found == neighbours_.end()) {
        throw std::runtime_error("The machine has no neighbour \"" + name + "\"");
    }
    return *found;
}

void Surroundings::kill(std::string const& name) {
    auto& player = neighbour(name).player;
    player->process().signal(SIGKILL);
    player->process().wait(Player::k_patience);
    player.reset();
}

void Surroundings::start(std::string const& name) {
    auto& killed = neighbour(name);
    killed.player = std::make_unique<Player>(killed.words);
    killed.seen = 0;
}

Player& Surroundings::running(std::string const& name) {
    auto& player = neighbour(name).player;
    if (!player) {
        throw std::runtime_error(name + " does not run");
    }
    return *player;
}

json Surroundings::tell(std::string const& name, json const& command) {
    auto answer = running(name).command(command);
    if (!answer.value("ok", false)) {
        throw std::runtime_error(name + ": " + answer.value("error", "") + ": " + command.dump());
    }
    if (auto event = event_of_application(name, command, answer)) {
        told_.push_back(std::move(*event));
    }
    return answer;
}

Timeline Surroundings::take() {
    Timeline events = std::exchange(told_, {});
    for (auto& neighbour : neighbours_) {
        if (!neighbour.player) {
            continue;
        }
        auto const& messages = neighbour.player->log().messages();
        for (; neighbour.seen < messages.size(); ++neighbour.seen) {
            if (neighbour.name == k_node) {
                auto const news = events_of_node(messages[neighbour.seen]);
                events.insert(events.end(), news.begin(), news.end());
            }
        }
    }
    return events;
}

std::vector<int> Surroundings::descriptors() const {
    std::vector<int> descriptors;
    for (auto const& neighbour : neighbours_) {
        if (neighbour.player) {
            descriptors.push_back(neighbour.player->process().output());
        }
    }
    return descriptors;
}

}  // namespace bench::vehicle
