// Clients as a line of a script tells of them: before the life, and in its events.
#include "simulation/script_clients.h"

#include <array>

namespace simulation {

using Answer = Client_manner::Answer;

std::string client_name(std::string name) {
    return name == "dcm" || name == "dem" ? "diag::" + name : name;
}

bool is_manner(std::string_view word) {
    return word == "after" || word == "silent" || word == "fails" || word == "invalid" || word == "crashes" ||
           word == "succeeds" || word == "twice";
}

Client_manner manner(Script_line& line) {
    Client_manner manner;
    if (is_manner(line.peek()) && line.peek() != "after") {
        constexpr std::array k_answers{Answer::succeeds,   Answer::silent,  Answer::fails,
                                       Answer::is_invalid, Answer::crashes, Answer::succeeds_twice};
        manner.answer = k_answers.at(
            line.one_of("a client's manner", {"succeeds", "silent", "fails", "invalid", "crashes", "twice"}));
    }
    if (manner.answer != Answer::silent && line.take("after")) {
        manner.after = line.time("the time after which it answers");
    }
    return manner;
}

Script::Client coming_client(Script_line& line, std::string const& name) {
    auto const how = manner(line);
    auto const state = line.take("in") ? line.next("the state that it is in") : "kOn";
    return {client_name(name), how, state};
}

}  // namespace simulation
