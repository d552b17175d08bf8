#ifndef TOOLS_TABLE_H
#define TOOLS_TABLE_H

#include <string>
#include <vector>

namespace statectl {

/// What a terminal is told to do with a text.
enum class Mark { plain, bold, red };

/// Standard output is a terminal that has colours, and nobody wants none (NO_COLOR).
bool has_colours();

/// The same, of a terminal of this type and what NO_COLOR is; null: not set.
bool allows_colours(bool is_terminal, char const* type, char const* unwanted);

/// The text in its colour, where there are colours.
std::string marked(std::string const& text, Mark mark, bool is_coloured = has_colours());

/// Columns that the text takes in a terminal. Nothing in it is obeyed (see `shown`).
std::size_t width_of(std::string const& text);

/// Rows of cells in columns that are as wide as their widest cell. Numbers stand at the right.
class Table {
 public:
    explicit Table(std::vector<std::string> heads) { add(std::move(heads)); }

    void add(std::vector<std::string> cells, Mark mark = Mark::plain);
    std::string text() const;

 private:
    struct Row {
        std::vector<std::string> cells;
        Mark mark;
    };

    std::vector<std::size_t> widths_;
    std::vector<Row> rows_;
};

}  // namespace statectl

#endif
