#ifndef POWER_OFF_COMMAND_H
#define POWER_OFF_COMMAND_H

#include <chrono>
#include <optional>
#include <string>
#include <variant>

namespace power_off {

/// "lookup NAME": this process is to be ended before the power goes.
struct Lookup {
    std::string name;
};

/// "terminate": ask it to end.
struct Terminate {};

/// "poweroff MILLISECONDS": the power is to be off within that time.
struct Power_off {
    std::chrono::milliseconds budget;
};

using Command = std::variant<Lookup, Terminate, Power_off>;

/// The command that a line holds; nothing when it holds none. A negative time counts as none left.
std::optional<Command> parse(std::string const& line);

}  // namespace power_off

#endif
