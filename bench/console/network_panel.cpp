#include "bench/console/network_panel.h"

#include <array>
#include <utility>

namespace bench::console {

namespace {

constexpr std::size_t k_values = 11;
constexpr std::size_t k_names = 32;

void draw_line(Canvas& canvas, std::size_t row, char const* title, std::string const& value, std::string const& names) {
    canvas.put(row, 0, std::string(title), Style::title);
    canvas.put(row, k_values, value.empty() ? "-" : value);
    canvas.put(row, k_names, value.empty() ? "" : names, Style::dim);
}

std::string others(Network_hand const& hand) {
    std::string const need = hand.others_need_network ? "others need it" : "others need nothing";
    return need + (hand.others_silent ? ", but are silent" : "");
}

std::size_t draw_application(Canvas& canvas, std::size_t row, std::size_t column, Machine_view const& machine,
                             Network_hand const& hand, std::size_t index) {
    static constexpr std::array<std::pair<char const*, char const*>, 3> k_means{
        {{"ecu_alive", "ECU"}, {"com_alive", "COM"}, {"cwu", "CWU"}}};
    auto const& name = hand.applications[index];
    canvas.put(row, column, name, index == hand.chosen ? Style::lit : Style::plain);
    column += name.size() + 1;
    for (auto const& [means, shown] : k_means) {
        canvas.put(row, column, std::string(shown), machine.holds(name, means) ? Style::good : Style::dim);
        column += 4;
    }
    return column + 3;
}

}  // namespace

void draw_network(Canvas& canvas, std::size_t row, Machine_view const& machine, Network_hand const& hand) {
    draw_line(canvas, row, "Network", machine.bus().empty() ? "bus sleep" : machine.bus(), others(hand));
    draw_line(canvas, row + 1, "State", machine.network_state().text,
              services::enumerate(services::network_state_names(machine.network_state().octets)));
    draw_line(canvas, row + 2, "User data", machine.user_data().text,
              services::enumerate(services::user_data_names(machine.user_data().octets, hand.layout)));
    draw_line(canvas, row + 3, "ECU", machine.ecu_state(), "");
    canvas.put(row + 4, 0, std::string("Holding"), Style::title);
    std::size_t column = k_values;
    for (std::size_t index = 0; index < hand.applications.size(); ++index) {
        column = draw_application(canvas, row + 4, column, machine, hand, index);
    }
    canvas.put(row + 5, 0, std::string(k_network_keys), Style::title);
}

}  // namespace bench::console
