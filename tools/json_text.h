#ifndef TOOLS_JSON_TEXT_H
#define TOOLS_JSON_TEXT_H

#include <nlohmann/json.hpp>
#include <string>

namespace statectl {

/// What is printed, on one line unless an indentation is given. Names and states are bytes of somebody's choice: what
/// is no UTF-8 in them is shown as the replacement character.
inline std::string json_text(nlohmann::json const& value, int indentation = -1) {
    return value.dump(indentation, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace statectl

#endif
