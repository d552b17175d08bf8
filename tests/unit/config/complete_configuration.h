#ifndef TESTS_UNIT_CONFIG_COMPLETE_CONFIGURATION_H
#define TESTS_UNIT_CONFIG_COMPLETE_CONFIGURATION_H

#include <nlohmann/json.hpp>
#include <string>

namespace test_support {

/// A configuration object with every member; no value is a default, so that a member which is not read shows.
nlohmann::json complete_configuration();

/// The text of the file that holds a configuration object.
std::string file_text(nlohmann::json const& configuration);

/// What the JSON library says when an action fails; empty when it does not.
template <class Action>
std::string reason(Action const& action) {
    try {
        action();
    } catch (nlohmann::json::exception const& error) {
        return error.what();
    }
    return {};
}

/// What the JSON library says about a text that it refuses to parse; empty when it accepts it.
std::string reason_of_refusal(std::string const& text);

}  // namespace test_support

#endif
