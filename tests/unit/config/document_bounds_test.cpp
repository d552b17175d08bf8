#include "statemanager/config/document_bounds.h"

#include "statemanager/config/json_conversion.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <stdexcept>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::config {
namespace {

using nlohmann::json;

// Why a text is refused; empty when it is not.
std::string refusal(std::string_view text) {
    try {
        require_bounds(text);
    } catch (std::runtime_error const& error) {
        return error.what();
    }
    return {};
}

std::string repeated(std::size_t times, std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

/// A list of numbers of which each but the last has a comma.
std::string list_of(std::size_t numbers) {
    return '[' + repeated(numbers - 1, "1,") + "1]";
}

std::string const k_too_deep = "values are nested deeper than 32 levels";
std::string const k_too_many = "it has more than 32768 values";

TEST(Document_bounds, Hold_a_value_at_the_deepest_level_and_none_below_it) {
    for (auto const* value : {"1", "\"a\"", "null", "[]", "{}"}) {
        EXPECT_EQ(refusal(repeated(32, "[") + value + repeated(32, "]")), "") << value;
        EXPECT_EQ(refusal(repeated(32, "{\"a\":") + value + repeated(32, "}")), "") << value;
        EXPECT_EQ(refusal(repeated(33, "[") + value + repeated(33, "]")), k_too_deep) << value;
        EXPECT_EQ(refusal(repeated(33, "{\"a\":") + value + repeated(33, "}")), k_too_deep) << value;
    }
    EXPECT_EQ(refusal(repeated(33, "[") + " \t\r\n" + repeated(33, "]")), "");
}

TEST(Document_bounds, Hold_as_many_values_as_are_allowed_and_no_more) {
    EXPECT_EQ(refusal(list_of(k_most_values - 1)), "");  // and the list itself
    EXPECT_EQ(refusal(list_of(k_most_values)), k_too_many);
    auto const members = repeated(k_most_values / 2 - 2, "\"a\":{\"a\":1},");
    EXPECT_EQ(refusal('{' + members + "\"a\":{\"a\":1}}"), "");
    EXPECT_EQ(refusal('{' + members + "\"a\":{\"a\":1},\"a\":[1]}"), k_too_many);
}

TEST(Document_bounds, Count_a_list_or_an_object_that_is_empty_twice) {
    for (std::string const empty : {"[]", "{}", "[ ]", "{\n}"}) {
        auto const list = '[' + repeated(k_most_values / 2 - 2, empty + ',') + empty;
        EXPECT_EQ(refusal(list + ']'), "") << empty;
        EXPECT_EQ(refusal(list + ',' + empty + ']'), k_too_many) << empty;
    }
}

TEST(Document_bounds, Look_at_nothing_inside_a_string) {
    auto const brackets = repeated(100, "[{");
    auto const commas = repeated(k_most_values, ",");
    for (auto const& content :
         {brackets, commas, "\\\"" + brackets, "\\\\\\\"" + commas, "\\u005b\\\\\\\"" + brackets}) {
        EXPECT_EQ(refusal("[\"" + content + "\"]"), "") << content.substr(0, 10);
    }
    EXPECT_EQ(refusal("[\"\\\\\"" + brackets), k_too_deep) << "behind the end of a string";
}

TEST(Document_bounds, Leave_what_is_no_JSON_to_the_parser) {
    for (auto const* text : {"", "]", "}}}}[", "\"", "\"\\", "[\"\\\"", "{'a': 1}", "[1,,,2]"}) {
        EXPECT_EQ(refusal(text), "") << text;
        EXPECT_THROW(parse_document(text), json::exception) << text;
    }
}

/// Documents with nested lists and objects and all that a string may hide.
class Random_documents {
 public:
    json next() { return value(0); }

 private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    std::string text() {
        std::string result;
        for (unsigned length = below(6); length > 0; --length) {
            result += "\"\\[]{},: a\n"[below(11)];
        }
        return result;
    }
    json value(unsigned level) {
        switch (level > 40 ? 2 : below(level == 0 ? 2 : 9)) {
            case 0: {
                json list = json::array();
                for (unsigned length = below(4); length > 0; --length) {
                    list.push_back(value(level + 1));
                }
                return list;
            }
            case 1: {
                json object = json::object();
                for (unsigned length = below(4); length > 0; --length) {
                    object[text()] = value(level + 1);
                }
                return object;
            }
            case 2:
                return below(100);
            case 3:
                return text();
            default:  // a tower
                return below(2) == 0 ? json::array({value(level + 1)}) : json{{text(), value(level + 1)}};
        }
    }

    std::mt19937 random_{1};
};

std::size_t levels(json const& value) {
    std::size_t deepest = 0;
    for (auto const& child : value) {
        if (value.is_structured()) {
            deepest = std::max(deepest, 1 + levels(child));
        }
    }
    return deepest;
}

TEST(Document_bounds, Refuse_exactly_the_documents_that_are_too_deep) {
    Random_documents documents;
    std::size_t refused = 0;
    for (int round = 0; round < 5000; ++round) {
        auto const document = documents.next();
        auto const text = document.dump(round % 3 - 1);
        if (levels(document) > k_deepest) {
            EXPECT_EQ(refusal(text), k_too_deep) << text;
            ++refused;
        } else {
            ASSERT_EQ(parse_document(text), document) << text;
        }
    }
    EXPECT_GT(refused, 20U);
    EXPECT_LT(refused, 4000U);
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
