#ifndef BENCH_JSON_LINES_ARGUMENTS_H
#define BENCH_JSON_LINES_ARGUMENTS_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

/// A command that is not carried out; the text tells its sender why.
class Command_error : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// The members of one command, taken out by name and type. A handler first takes all that it knows, then calls `end()`,
/// then acts: every operation here throws `Command_error`, so that a wrong command changes nothing.
class Arguments {
 public:
    /// `command` must be a JSON object and outlive this.
    explicit Arguments(nlohmann::json const& command);

    std::string text(std::string const& name);
    std::string text_or(std::string const& name, std::string const& otherwise);
    std::optional<std::string> optional_text(std::string const& name);
    bool flag_or(std::string const& name, bool otherwise);

    /// A whole number from `lowest` to `highest`, both included.
    std::int64_t number(std::string const& name, std::int64_t lowest, std::int64_t highest);
    std::int64_t number_or(std::string const& name, std::int64_t otherwise, std::int64_t lowest, std::int64_t highest);
    std::optional<std::int64_t> optional_number(std::string const& name, std::int64_t lowest, std::int64_t highest);

    /// An errno value, given by name ("EIO") or number.
    std::optional<int> optional_errno(std::string const& name);

    std::optional<std::vector<std::string>> optional_texts(std::string const& name);

    /// The member as it is, or null when there is none.
    nlohmann::json const* find(std::string const& name);

    /// Fails when the command has a member that nobody took: a misspelt name is an error, not a default.
    void end() const;

 private:
    nlohmann::json const& command_;
    std::set<std::string> taken_;
};

/// The number of an errno name such as "EIO"; 0 for a name that is unknown.
int errno_of(std::string const& name);

/// The name of an errno value such as "EIO".
std::string errno_name(int number);

}  // namespace bench

#endif
