#include "bench/console/canvas.h"

#include <algorithm>

namespace bench::console {

void Canvas::put(std::size_t row, std::size_t column, std::wstring const& text, Style style) {
    for (std::size_t index = 0; index < text.size() && row < rows() && column + index < columns_; ++index) {
        cells_[row * columns_ + column + index] = {text[index], style};
    }
}

void Canvas::put(std::size_t row, std::size_t column, std::string const& text, Style style) {
    std::wstring printable;
    for (char const character : text) {
        printable += character >= ' ' && character <= '~' ? static_cast<wchar_t>(character) : L'?';
    }
    put(row, column, printable, style);
}

void Canvas::paint(std::size_t row, std::size_t column, std::size_t height, std::size_t width, Style style) {
    for (auto painted_row = row; painted_row < std::min(row + height, rows()); ++painted_row) {
        for (auto painted = column; painted < std::min(column + width, columns_); ++painted) {
            cells_[painted_row * columns_ + painted].style = style;
        }
    }
}

std::wstring Canvas::row_text(std::size_t row) const {
    std::wstring text;
    for (std::size_t column = 0; column < columns_; ++column) {
        text += at(row, column).character;
    }
    text.erase(text.find_last_not_of(L' ') + 1);
    return text;
}

}  // namespace bench::console
