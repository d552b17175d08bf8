#ifndef TESTS_SIMULATION_LIVES_LIFE_TEXTS_H
#define TESTS_SIMULATION_LIVES_LIFE_TEXTS_H

#include "simulation/time.h"

#include <chrono>
#include <optional>
#include <string>

namespace lives {

/// What stands behind a text's beginning; nothing when it begins otherwise.
inline std::optional<std::string> behind(std::string const& begin, std::string const& text) {
    return text.rfind(begin, 0) == 0 ? std::optional(text.substr(begin.size())) : std::nullopt;
}

/// The milliseconds that stand behind a word.
inline std::optional<simulation::Time> time_behind(std::string const& word, std::string const& text) {
    auto const place = text.find(word);
    return place == std::string::npos ? std::nullopt
                                      : std::optional<simulation::Time>(
                                            std::chrono::milliseconds(std::stoul(text.substr(place + word.size()))));
}

inline std::string text_of(simulation::Time time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()) + " ms";
}

}  // namespace lives

#endif
