#include "bench/json_lines/command_table.h"

#include "bench/json_lines/clock.h"

namespace bench {

namespace {

nlohmann::json parsed(std::string const& line) {
    auto command = nlohmann::json::parse(line, nullptr, false);
    if (!command.is_object()) {
        throw Command_error("not a JSON object on one line");
    }
    return command;
}

nlohmann::json member_or_null(nlohmann::json const& command, char const* name) {
    auto const member = command.find(name);
    return member == command.end() ? nlohmann::json() : *member;
}

}  // namespace

nlohmann::json Command_table::carry_out(nlohmann::json const& command) const {
    Arguments arguments(command);
    std::string const name = arguments.text("do");
    auto const handler = handlers_.find(name);
    if (handler == handlers_.end()) {
        throw Command_error("there is no command \"" + name + "\"");
    }
    return handler->second(arguments);
}

nlohmann::json Command_table::answer(std::string const& line) const {
    nlohmann::json result = nlohmann::json::object();
    nlohmann::json command;
    try {
        command = parsed(line);
        auto const details = carry_out(command);
        if (details.is_object()) {
            result.update(details);
        }
        result["ok"] = true;
    } catch (Command_error const& error) {
        result = {{"ok", false}, {"error", error.what()}};
    }
    result["answer"] = command.is_object() ? member_or_null(command, "do") : nlohmann::json();
    if (command.is_object() && command.contains("id")) {
        result["id"] = command["id"];
    }
    if (!result.contains("t")) {
        result["t"] = monotonic_ns();
    }
    return result;
}

}  // namespace bench
