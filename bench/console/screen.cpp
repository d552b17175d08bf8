#include "bench/console/screen.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

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
constexpr std::size_t k_below_diagram = 12;
constexpr std::size_t k_least_log_rows = 5;

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

/// A number is a status, words tell themselves.
std::string end_of(std::string const& status) {
    bool const is_number = status.find_first_not_of("0123456789") == std::string::npos;
    return is_number ? "status " + status : status;
}

void draw_side(Canvas& canvas, Machine_view const& machine) {
    canvas.put(0, k_side, std::string("Machine state"), Style::title);
    canvas.put(1, k_side, machine.machine_state().empty() ? "-" : machine.machine_state());
    bool const alive = !machine.exit_status();
    if (machine.beats() > 0) {  // not every machine tells of them
        canvas.put(2, k_side, std::wstring(machine.beats() % 2 == 0 ? L"♥ " : L"♡ ") + std::to_wstring(machine.beats()),
                   alive ? Style::good : Style::dim);
    }
    if (!alive) {
        canvas.put(3, k_side, "ended, " + end_of(*machine.exit_status()), Style::bad);
    } else if (machine.state_word().empty()) {
        canvas.put(3, k_side, std::string("no state yet"), Style::dim);
    }
    auto const next = draw_list(canvas, 4, "Words written", machine.words(), 4);
    draw_list(canvas, std::max<std::size_t>(next, 9), "Keys pressed", machine.keys(), 2);
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

/// "asked for kPrepSD, 2.4 s left", and how it is to be seen.
std::pair<std::string, Style> debt_of(vehicle::Client_status const& client, std::int64_t now) {
    if (!client.is_running) {
        return {"crashed; w starts it again", Style::bad};
    }
    if (client.owed.empty()) {
        return {client.is_connected ? "" : "not connected", client.is_connected ? Style::plain : Style::dim};
    }
    if (client.deadline == 0) {
        return {"asked for " + client.owed, Style::warning};
    }
    if (client.deadline < now) {
        return {"asked for " + client.owed + ", its time is over", Style::bad};
    }
    std::array<char, 24> left{};
    std::snprintf(left.data(), left.size(), ", %.1f s left", static_cast<double>(client.deadline - now) / 1e9);
    return {"asked for " + client.owed + left.data(), Style::warning};
}

void draw_client(Canvas& canvas, std::size_t row, Machine_view const& machine, std::size_t index) {
    constexpr std::size_t k_name = 2;
    constexpr std::size_t k_manner = 16;
    constexpr std::size_t k_state = 26;
    constexpr std::size_t k_debt = 36;
    auto const& client = machine.clients()[index];
    auto const [debt, style] = debt_of(client, machine.now());
    canvas.put(row, 0, std::string(index == machine.selected_client() ? ">" : " "), Style::title);
    canvas.put(row, k_name, client.name.substr(0, k_manner - k_name - 1), style);
    canvas.put(row, k_manner, client.manner, client.manner == "well" ? Style::plain : Style::warning);
    canvas.put(row, k_state, client.state, style);
    canvas.put(row, k_debt, debt, style);
}

/// Returns the row behind the clients.
std::size_t draw_clients(Canvas& canvas, Machine_view const& machine) {
    auto row = k_below_diagram;
    if (machine.clients().empty()) {
        return row;
    }
    canvas.put(row++, 0, std::string("Clients  Tab next  w well  l late  i silent  f fails  c crashes"), Style::title);
    for (std::size_t index = 0; index < machine.clients().size(); ++index) {
        draw_client(canvas, row++, machine, index);
    }
    return row;
}

/// The clients and the network; one of them where the terminal has not the rows for both. Returns the row behind.
std::size_t draw_panels(Canvas& canvas, Machine_view const& machine, Network_hand const& hand) {
    if (hand.applications.empty()) {
        return draw_clients(canvas, machine);
    }
    auto const client_rows = machine.clients().empty() ? 0 : machine.clients().size() + 1;
    bool const has_rows = canvas.rows() >= k_below_diagram + client_rows + k_network_rows + k_least_log_rows;
    if (!has_rows && !hand.instead_of_clients) {
        return draw_clients(canvas, machine);
    }
    auto const top = has_rows ? draw_clients(canvas, machine) : k_below_diagram;
    draw_network(canvas, top, machine, hand);
    return top + k_network_rows;
}

void draw_log(Canvas& canvas, Machine_view const& machine, int level, std::size_t top) {
    static constexpr std::array<char const*, 7> names{"nothing", "fatal", "error", "warn", "info", "debug", "verbose"};
    canvas.put(top, 0, std::string("Log up to ") + names.at(static_cast<std::size_t>(std::clamp(level, 0, 6))),
               Style::title);
    auto const& log = machine.log();
    auto row = canvas.rows() - 1;
    for (auto message = log.rbegin(); message != log.rend() && row > top + 1; ++message) {
        if (message->level <= level) {
            canvas.put(--row, 0, line_of(*message), style_of(message->level));
        }
    }
}

}  // namespace

void draw(Canvas& canvas, Machine_view const& machine, int level, Network_hand const& hand) {
    if (canvas.rows() < k_least_rows || canvas.columns() < k_least_columns) {
        canvas.put(0, 0, std::string("The terminal is too small; 80 x 20 are needed. q quits."));
        return;
    }
    draw_diagram(canvas, machine);
    draw_side(canvas, machine);
    draw_log(canvas, machine, level, draw_panels(canvas, machine, hand));
    auto const last = canvas.rows() - 1;
    constexpr char const* k_keys = "r run  n net  s net+suspend  p suspend  o power  1-6 log  d panel  x stop q quit";
    auto const& trouble = machine.trouble();
    constexpr char const* k_keys_after_end = "x start it again  1-6 log  d panel  q quit";
    auto const keys = machine.exit_status() ? k_keys_after_end : k_keys;
    canvas.put(last, 0, trouble.empty() ? keys : trouble, trouble.empty() ? Style::title : Style::bad);
}

}  // namespace bench::console
