#include "bench/process/player.h"

#include <csignal>
#include <stdexcept>

#include <unistd.h>

namespace bench {

namespace {

constexpr std::chrono::seconds k_end_after_output{1};

}  // namespace

bool has_members(nlohmann::json const& message, nlohmann::json const& members) {
    for (auto const& member : members.items()) {
        auto const found = message.find(member.key());
        if (found == message.end() || *found != member.value()) {
            return false;
        }
    }
    return true;
}

Player::Player(std::vector<std::string> const& words, std::vector<std::string> const& environment)
    : process_(words, environment), log_(process_.output()) {
    if (!log_.await([](nlohmann::json const& line) { return has_members(line, {{"event", "ready"}}); }, k_patience)) {
        auto const status = process_.wait(k_end_after_output);
        throw std::runtime_error(words.front() + " is not ready" +
                                 (status ? ", it ended with status " + std::to_string(*status) : ""));
    }
}

void Player::send_line(std::string const& line) const {
    ::signal(SIGPIPE, SIG_IGN);  // a player that died shows by the answer that does not come
    std::string const bytes = line + "\n";
    static_cast<void>(!::write(process_.input(), bytes.data(), bytes.size()));
}

nlohmann::json Player::command(nlohmann::json message) {
    std::uint64_t const id = next_id_++;
    message["id"] = id;
    std::size_t const from = position();
    send_line(message.dump());
    auto const answer = log_.await(
        [&](nlohmann::json const& line) {
            return line.contains("answer") && has_members(line, {{"id", id}});
        },
        k_patience, from);
    if (!answer) {
        throw std::runtime_error("no answer to " + message.dump());
    }
    return *answer;
}

nlohmann::json Player::await_event(std::string const& name, nlohmann::json const& members, std::size_t from) {
    nlohmann::json wanted = members;
    wanted["event"] = name;
    auto const message =
        log_.await([&](nlohmann::json const& line) { return has_members(line, wanted); }, k_patience, from);
    if (!message) {
        throw std::runtime_error("no event " + wanted.dump() + " among " + nlohmann::json(log_.messages()).dump());
    }
    return *message;
}

}  // namespace bench
