// What a line of a script expects: an entry of the life's timeline, none, or words; and the time that it is looked for
// in.
#include "simulation/script_expectations.h"

#include "simulation/rules.h"
#include "simulation/script_clients.h"

#include <string>
#include <string_view>
#include <vector>

namespace simulation {

namespace {

bool is_limit(std::string_view word) {
    return word == "within" || word == "before" || word == "after";
}

/// The words up to what limits the time.
std::string words(Script_line& line, char const* what) {
    auto text = line.next(what);
    while (!line.at_end() && !is_limit(line.peek())) {
        text += line.take(",") ? "," : ' ' + line.next(what);
    }
    return text;
}

std::string state_word(Script_line& line) {
    static auto const& words = *new std::vector<std::string>{
        "startingup", "running", "runnmcontrolled", "postrun", "preparing", "prepared4sd", "resuming", "shuttingdown"};
    return line.known("a state word", words);
}

Script::Wanted wanted(Script_line& line) {
    if (line.take("word")) {
        return {Kind::word, "written", state_word(line)};
    }
    if (line.take("client")) {
        auto const name = client_name(line.next("a client"));
        return {Kind::client, name, words(line, "what the client does")};
    }
    if (line.take("machine-state")) {
        return {Kind::machine_state, "granted", line.known("a machine state", {"Running", "Shutdown"})};
    }
    if (line.take("power-off")) {
        return {Kind::power_off, "", words(line, "a line to the power-off service")};
    }
    if (line.take("restart")) {
        return {Kind::restart, "written", line.known("a restart word", {"restartao", "restartm3", "cancel"})};
    }
    if (line.take("request") || line.take("release")) {
        line.refuse_last("what is requested of the network is expected as \"network-state\" or \"user-data\"");
    }
    if (line.take("network-state")) {
        return {Kind::network, "", words(line, "the bytes")};
    }
    if (line.take("user-data")) {
        return {Kind::request, "user data", words(line, "the bytes")};
    }
    if (line.take("end")) {
        return {Kind::end, "", ""};
    }
    auto const state = words(line, "what is expected");
    if (!is_state(state)) {
        line.refuse_last('"' + state +
                         "\" is neither a state nor word, client, machine-state, power-off, restart, "
                         "network-state, user-data or end");
    }
    return {Kind::state, state, ""};
}

void limits(Script_line& line, Script::Expectation& expectation) {
    if (line.take("within")) {
        auto const span = line.time("a time");
        line.one_of("\"of\" and a time", {"of"});
        expectation.time_column = line.column();
        expectation.from = line.time("a time");
        expectation.to = expectation.from + span;
    } else if (line.take("before")) {
        expectation.to = line.time("a time") - Time(1);
    } else if (line.take("after")) {
        expectation.time_column = line.column();
        expectation.from = line.time("a time");
    }
}

}  // namespace

Script::Expectation expectation(Script_line& line) {
    auto whole = line;
    Script::Expectation expectation{line.number(), whole.rest("what is expected")};
    if (line.take("words")) {
        expectation.kind = Script::Expectation::Kind::words;
        do {
            expectation.words.push_back(state_word(line));
        } while (line.take(","));
    } else {
        if (line.take("no")) {
            expectation.kind = Script::Expectation::Kind::none;
        }
        auto at_client = line;
        at_client.take("client");
        expectation.name_column = at_client.column();
        expectation.wanted = wanted(line);
        limits(line, expectation);
    }
    return expectation;
}

}  // namespace simulation
