#include "tools/table.h"

#include "tools/page/words.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include <unistd.h>

namespace statectl {

namespace {

constexpr char const* k_gap = "  ";

using Range = std::pair<std::uint32_t, std::uint32_t>;

// What is put on the character before it, or is not seen at all; and what is as wide as two: ideographs and pictures.
constexpr std::array<Range, 6> k_no_width{
    {{0x300, 0x36f}, {0x200b, 0x200f}, {0x20d0, 0x20ff}, {0x3099, 0x309a}, {0xfe00, 0xfe0f}, {0xe0100, 0xe01ef}}};
constexpr std::array<Range, 9> k_two_wide{{{0x1100, 0x115f},
                                           {0x2e80, 0x3098},
                                           {0x309b, 0xa4cf},
                                           {0xac00, 0xd7a3},
                                           {0xf900, 0xfaff},
                                           {0xfe30, 0xfe6f},
                                           {0xff00, 0xff60},
                                           {0x1f300, 0x1faff},
                                           {0x20000, 0x3fffd}}};

template <std::size_t count>
bool is_in(std::array<Range, count> const& ranges, std::uint32_t character) {
    return std::any_of(ranges.begin(), ranges.end(), [character](auto const& range) {
        return character >= range.first && character <= range.second;
    });
}

bool is_number(std::string const& cell) {
    return !cell.empty() && cell.find_first_not_of("0123456789") == std::string::npos;
}

std::string padded(std::string const& cell, std::size_t width) {
    std::string const space(width - width_of(cell), ' ');
    return is_number(cell) ? space + cell : cell + space;
}

}  // namespace

bool allows_colours(bool is_terminal, char const* type, char const* unwanted) {
    std::string_view const terminal = type == nullptr ? "" : type;
    return is_terminal && !terminal.empty() && terminal != "dumb" && (unwanted == nullptr || *unwanted == '\0');
}

bool has_colours() {
    return allows_colours(::isatty(STDOUT_FILENO) == 1, std::getenv("TERM"), std::getenv("NO_COLOR"));
}

std::string marked(std::string const& text, Mark mark, bool is_coloured) {
    if (mark == Mark::plain || !is_coloured) {
        return text;
    }
    return (mark == Mark::bold ? "\x1b[1m" : "\x1b[31m") + text + "\x1b[0m";
}

std::size_t width_of(std::string const& text) {
    std::size_t width = 0;
    for (std::string_view rest = text; !rest.empty();) {
        auto const first = character_at(rest);
        width += is_in(k_no_width, first.number) ? 0 : is_in(k_two_wide, first.number) ? 2 : 1;
        rest.remove_prefix(first.bytes);
    }
    return width;
}

void Table::add(std::vector<std::string> cells, Mark mark) {
    widths_.resize(std::max(widths_.size(), cells.size()));
    for (std::size_t column = 0; column < cells.size(); ++column) {
        widths_[column] = std::max(widths_[column], width_of(cells[column]));
    }
    rows_.push_back({std::move(cells), mark});
}

std::string Table::text() const {
    std::string text;
    for (auto const& row : rows_) {
        std::string line;
        for (std::size_t column = 0; column < row.cells.size(); ++column) {
            line += (column == 0 ? "" : k_gap) + padded(row.cells[column], widths_[column]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += marked(line, row.mark) + '\n';
    }
    return text;
}

}  // namespace statectl
