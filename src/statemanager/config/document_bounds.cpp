// Counted before parsing and not by the library's callback, for which the library walks through all siblings of a value
// whenever one of them ends.

#include "statemanager/config/document_bounds.h"

#include <stdexcept>
#include <string>

namespace ximo::ap::statemanager::config {
namespace {

bool is_space(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

// The place of the closing quote, or one behind the text.
std::size_t end_of_string(std::string_view text, std::size_t opening_quote) {
    auto position = opening_quote + 1;
    while (position < text.size() && text[position] != '"') {
        position += text[position] == '\\' ? 2 : 1;
    }
    return position;
}

/// What has been seen of a document, character by character outside of strings. A text that is no JSON may be counted
/// wrongly behind its first error, and is refused in any case.
class Count {
 public:
    void count(char character) {
        if (character == ']' || character == '}') {
            --depth_;
        } else if (!is_space(character)) {
            require_depth();
            count_beginning(character);
        }
    }

 private:
    void count_beginning(char character) {
        bool const opens = character == '[' || character == '{';
        if (opens) {
            ++depth_;
        }
        // Each value but the document stands behind a comma or is the first one of its parent, which every parent is
        // taken to have: an empty one costs as much as one with a value when it is of no use.
        if (opens || character == ',') {
            require_values(++values_);
        }
    }
    void require_depth() const {
        if (depth_ > static_cast<std::ptrdiff_t>(k_deepest)) {
            throw std::runtime_error("values are nested deeper than " + std::to_string(k_deepest) + " levels");
        }
    }
    static void require_values(std::size_t values) {
        if (values > k_most_values) {
            throw std::runtime_error("it has more than " + std::to_string(k_most_values) + " values");
        }
    }

    std::ptrdiff_t depth_{0};
    std::size_t values_{1};
};

}  // namespace

void require_bounds(std::string_view text) {
    Count count;
    for (std::size_t position = 0; position < text.size(); ++position) {
        count.count(text[position]);
        if (text[position] == '"') {
            position = end_of_string(text, position);
        }
    }
}

}  // namespace ximo::ap::statemanager::config
