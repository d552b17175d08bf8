#include "simulation/rules.h"

#include "bench/rules/rules.h"
#include "status/rows.h"

namespace simulation {

namespace {

using bench::rules::State;

unsigned number_of(std::string const& state) {
    unsigned number = 0;
    while (number < static_cast<unsigned>(State::stay) && state != bench::rules::name(static_cast<State>(number))) {
        ++number;
    }
    return number;
}

}  // namespace

bool is_state(std::string const& name) {
    return number_of(name) != static_cast<unsigned>(State::stay);
}

std::string cause_of(std::string const& from, std::string const& to, unsigned command, bool nm_usage) {
    auto const found = status::row_of(number_of(from), number_of(to), command, nm_usage);
    for (auto const& row : bench::rules::rows()) {
        if (static_cast<unsigned>(row.from) == number_of(from) &&
            static_cast<std::uint64_t>(row.number) == found.number) {
            return std::string(row.condition) + " (" + bench::rules::name(row) + ')';
        }
    }
    return "no row of the tables";
}

}  // namespace simulation
