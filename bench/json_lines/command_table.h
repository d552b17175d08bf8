#ifndef BENCH_JSON_LINES_COMMAND_TABLE_H
#define BENCH_JSON_LINES_COMMAND_TABLE_H

#include "bench/json_lines/arguments.h"

#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace bench {

/// Finds the handler of a command line and makes the answer line.
///
/// A command is a JSON object with the member "do"; a member "id" of any type is given back in the answer. The answer
/// has "answer" (the command's name), "ok", "t" and whatever the handler adds; when "ok" is false it has "error", and
/// the command has changed nothing.
class Command_table {
 public:
    /// Acts on the command and returns what the answer shall have besides the members above (an object or null).
    /// Throws `Command_error` before it changes anything.
    using Handler = std::function<nlohmann::json(Arguments&)>;

    void add(std::string const& name, Handler handler) { handlers_[name] = std::move(handler); }

    nlohmann::json answer(std::string const& line) const;

 private:
    nlohmann::json carry_out(nlohmann::json const& command) const;

    std::map<std::string, Handler> handlers_;
};

}  // namespace bench

#endif
