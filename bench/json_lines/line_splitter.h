#ifndef BENCH_JSON_LINES_LINE_SPLITTER_H
#define BENCH_JSON_LINES_LINE_SPLITTER_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace bench {

/// Cuts a stream of bytes, which arrives in pieces of any size, into lines without their line feed.
class Line_splitter {
 public:
    /// A line longer than this is given out in pieces of this length, so that a writer without line feeds costs no
    /// more.
    static constexpr std::size_t k_longest_line = 64UL * 1024;

    void add(std::string_view bytes) { waiting_.append(bytes); }

    /// The next complete line, or nothing when the rest of it has not arrived yet.
    std::optional<std::string> next();

    /// What stands after the last line feed once the stream has ended; nothing when it ended with one.
    std::optional<std::string> rest();

 private:
    std::string waiting_;
};

}  // namespace bench

#endif
