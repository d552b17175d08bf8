#include "tools/check_config/words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <vector>

namespace statectl::check_config {

namespace {

using nlohmann::json;

char lower(char character) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

}  // namespace

std::size_t distance(std::string const& left, std::string const& right) {
    auto const width = right.size() + 1;
    std::vector<std::size_t> cells((left.size() + 1) * width);
    auto const cell = [&](std::size_t i, std::size_t j) -> std::size_t& { return cells[i * width + j]; };
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                cell(i, j) = i + j;
                continue;
            }
            bool const same = lower(left[i - 1]) == lower(right[j - 1]);
            cell(i, j) = std::min({cell(i - 1, j) + 1, cell(i, j - 1) + 1, cell(i - 1, j - 1) + (same ? 0 : 1)});
            if (i > 1 && j > 1 && lower(left[i - 1]) == lower(right[j - 2]) &&
                lower(left[i - 2]) == lower(right[j - 1])) {
                cell(i, j) = std::min(cell(i, j), cell(i - 2, j - 2) + 1);
            }
        }
    }
    return cells.back();
}

bool is_like(std::string const& left, std::string const& right) {
    constexpr std::size_t k_longest = 64;
    constexpr std::size_t k_letters_a_slip = 5;
    auto const [shorter, longer] = std::minmax({left.size(), right.size()});
    auto const slips = shorter / k_letters_a_slip;
    return longer <= k_longest && longer - shorter <= slips && distance(left, right) <= slips;
}

std::string type_name(json const& value) {
    if (value.is_null()) {
        return "null";
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "true" : "false";
    }
    if (value.is_number()) {
        return "a number";
    }
    return value.is_string() ? "text" : value.is_array() ? "a list" : "an object";
}

std::string type_name(Kind kind) {
    static std::array<char const*, 6> const names{"a number",          "true or false", "text",
                                                  "a list of numbers", "an object",     "a list of objects"};
    return names.at(static_cast<std::size_t>(kind));
}

bool has_type(json const& value, Kind kind) {
    switch (kind) {
        case Kind::number:
            return value.is_number();
        case Kind::flag:
            return value.is_boolean();
        case Kind::text:
            return value.is_string();
        case Kind::section:
            return value.is_object();
        case Kind::bytes:
        case Kind::instances:
            break;
    }
    return value.is_array();
}

std::string seconds_text(double seconds) {
    std::array<char, 32> text{};
    bool const is_whole = std::abs(seconds - std::round(seconds)) < 0.05;
    std::snprintf(text.data(), text.size(), is_whole ? "%.0f" : "%.1f", seconds);
    return text.data();
}

}  // namespace statectl::check_config
