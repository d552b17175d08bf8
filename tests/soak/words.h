#ifndef TESTS_SOAK_WORDS_H
#define TESTS_SOAK_WORDS_H

#include "bench/rules/rules.h"
#include "bench/vehicle/timeline.h"

#include <cstdint>
#include <optional>
#include <string>

// What the machine's events say, and what they are told with.
namespace soak {

constexpr std::int64_t k_ns_per_ms = 1'000'000;
constexpr std::int64_t k_ns_per_s = 1'000'000'000;
constexpr std::int64_t k_slack = 3 * k_ns_per_s;  ///< that a busy machine may be late

/// The control file's word for a state.
std::string word_of(bench::rules::State state);
std::optional<bench::rules::State> state_of_word(std::string const& word);

/// The state and the command of a name in the log.
std::optional<bench::rules::State> state_named(std::string const& name);
bench::rules::Command command_named(std::string const& name);

/// What stands behind a text's beginning; nothing when it begins otherwise.
std::optional<std::string> behind(std::string const& begin, std::string const& text);

/// The word that stands there, without comma.
std::string word_at(std::string const& text, std::size_t place);

bool is_of_daemon(bench::vehicle::Event const& event);

std::string in_ms(std::int64_t time);

}  // namespace soak

#endif
