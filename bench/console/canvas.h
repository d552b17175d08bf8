#ifndef BENCH_CONSOLE_CANVAS_H
#define BENCH_CONSOLE_CANVAS_H

#include <cstddef>
#include <string>
#include <vector>

namespace bench::console {

enum class Style { plain, dim, title, lit, good, warning, bad };

/// A grid of characters with a style each; what is drawn outside is cut off.
class Canvas {
 public:
    struct Cell {
        wchar_t character{L' '};
        Style style{Style::plain};
    };

    Canvas(std::size_t rows, std::size_t columns) : columns_(columns), cells_(rows * columns) {}

    std::size_t rows() const { return columns_ == 0 ? 0 : cells_.size() / columns_; }
    std::size_t columns() const { return columns_; }
    Cell const& at(std::size_t row, std::size_t column) const { return cells_.at(row * columns_ + column); }

    void put(std::size_t row, std::size_t column, std::wstring const& text, Style style = Style::plain);

    /// Text of unknown origin: everything but printable ASCII becomes '?'.
    void put(std::size_t row, std::size_t column, std::string const& text, Style style = Style::plain);

    /// Gives a rectangle another style and leaves its characters.
    void paint(std::size_t row, std::size_t column, std::size_t height, std::size_t width, Style style);

    /// One row without its trailing blanks.
    std::wstring row_text(std::size_t row) const;

 private:
    std::size_t columns_;
    std::vector<Cell> cells_;
};

}  // namespace bench::console

#endif
