#include "bench/json_lines/line_splitter.h"

#include <utility>

namespace bench {

std::optional<std::string> Line_splitter::next() {
    std::size_t const end = waiting_.find('\n');
    if (end == std::string::npos && waiting_.size() < k_longest_line) {
        return std::nullopt;
    }
    bool const complete = end <= k_longest_line;
    std::size_t const length = complete ? end : k_longest_line;
    std::string line = waiting_.substr(0, length);
    waiting_.erase(0, complete ? length + 1 : length);
    return line;
}

std::optional<std::string> Line_splitter::rest() {
    if (waiting_.empty()) {
        return std::nullopt;
    }
    return std::exchange(waiting_, {});
}

}  // namespace bench
