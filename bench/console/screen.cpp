#include "bench/console/screen.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace bench::console {

namespace {

constexpr std::array<wchar_t const*, 12> k_diagram{L" ╭─────────────╮       ╭─────────────╮  n s  ╭───────────────╮",
                                                   L" │ Starting up │──────▶│   Running   │──────▶│ NM Controlled │",
                                                   L" ╰─────────────╯       ╰─────────────╯◀──────╰───────────────╯",
                                                   L"                        ▲   p │        r        │         ▲   ",
                                                   L" ╭─────────────╮        │     ▼                 ▼         │   ",
                                                   L" │  Resuming   │────────╯╭───────────╮       ╭───────────────╮",
                                                   L" ╰─────────────╯◀────────│ Preparing │◀──────│   Post Run    │",
                                                   L"        ▲           r    ╰───────────╯   p   ╰───────────────╯",
                                                   L"        │                     │                      │        ",
                                                   L"        │ r             ╭─────▼──────╮ power ╭───────▼───────╮",
                                                   L"        ╰───────────────│ PreparedSD │──────▶│ Shutting down │",
                                                   L"                        ╰────────────╯       ╰───────────────╯"};
constexpr std::size_t k_side = 64;
constexpr std::size_t k_log_top = 13;

struct Box {
    char const* state_word;
    std::size_t row;
    std::size_t column;
    std::size_t width;
};

constexpr std::array<Box, 8> k_boxes{{{"startingup", 0, 1, 15},
                                      {"running", 0, 23, 15},
                                      {"runnmcontrolled", 0, 45, 17},
                                      {"resuming", 4, 1, 15},
                                      {"preparing", 5, 25, 13},
                                      {"postrun", 5, 45, 17},
                                      {"prepared4sd", 9, 24, 14},
                                      {"shuttingdown", 9, 45, 17}}};

void draw_diagram(Canvas& canvas, Machine_view const& machine) {
    for (std::size_t row = 0; row < k_diagram.size(); ++row) {
        canvas.put(row, 0, std::wstring(k_diagram.at(row)), Style::dim);
    }
    for (auto const& box : k_boxes) {
        bool const is_current = machine.state_word() == box.state_word && !machine.exit_status();
        canvas.paint(box.row, box.column, 3, box.width, is_current ? Style::lit : Style::plain);
    }
}

std::size_t draw_list(Canvas& canvas, std::size_t row, char const* title, std::deque<std::string> const& items,
                      std::size_t most) {
    canvas.put(row++, k_side, std::string(title), Style::title);
    auto const shown = std::min(items.size(), most);
    for (auto item = items.end() - static_cast<std::ptrdiff_t>(shown); item != items.end(); ++item) {
        canvas.put(row++, k_side, *item);
    }
    return row;
}

void draw_side(Canvas& canvas, Machine_view const& machine) {
    canvas.put(0, k_side, std::string("Machine state"), Style::title);
    canvas.put(1, k_side, machine.machine_state().empty() ? "-" : machine.machine_state());
    bool const alive = !machine.exit_status();
    canvas.put(2, k_side, std::wstring(machine.beats() % 2 == 0 ? L"♥ " : L"♡ ") + std::to_wstring(machine.beats()),
               alive ? Style::good : Style::dim);
    if (!alive) {
        canvas.put(3, k_side, "ended, status " + *machine.exit_status(), Style::bad);
    }
    auto const next = draw_list(canvas, 4, "Words written", machine.words(), 4);
    draw_list(canvas, std::max<std::size_t>(next, 9), "Keys pressed", machine.keys(), 3);
}

Style style_of(int level) {
    if (level <= 2) {
        return Style::bad;
    }
    return level == 3 ? Style::warning : level == 4 ? Style::plain : Style::dim;
}

std::string line_of(vehicle::Event const& message) {
    static constexpr std::array<char const*, 7> names{"off", "fatal", "error", "warn", "info", "debug", "verb"};
    std::array<char, 48> prefix{};
    std::snprintf(prefix.data(), prefix.size(), "%10.3f %-5s %-4s ", static_cast<double>(message.time) / 1e9,
                  names.at(static_cast<std::size_t>(std::clamp(message.level, 0, 6))), message.context.c_str());
    return prefix.data() + message.text;
}

void draw_log(Canvas& canvas, Machine_view const& machine, int level) {
    static constexpr std::array<char const*, 7> names{"nothing", "fatal", "error", "warn", "info", "debug", "verbose"};
    canvas.put(k_log_top - 1, 0,
               std::string("Log up to ") + names.at(static_cast<std::size_t>(std::clamp(level, 0, 6))), Style::title);
    auto const& log = machine.log();
    auto row = canvas.rows() - 1;
    for (auto message = log.rbegin(); message != log.rend() && row > k_log_top; ++message) {
        if (message->level <= level) {
            canvas.put(--row, 0, line_of(*message), style_of(message->level));
        }
    }
}

}  // namespace

void draw(Canvas& canvas, Machine_view const& machine, int level) {
    if (canvas.rows() < k_least_rows || canvas.columns() < k_least_columns) {
        canvas.put(0, 0, std::string("The terminal is too small; 80 x 20 are needed. q quits."));
        return;
    }
    draw_diagram(canvas, machine);
    draw_side(canvas, machine);
    draw_log(canvas, machine, level);
    auto const last = canvas.rows() - 1;
    canvas.put(last, 0, std::string("r run  n net  s net+suspend  p suspend  o power  1-6 log  x stop/start  q quit"),
               Style::title);
}

}  // namespace bench::console
