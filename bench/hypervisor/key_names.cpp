#include "bench/hypervisor/key_names.h"

#include <map>

#include <linux/input-event-codes.h>

namespace bench::hypervisor {

namespace {

using Names = std::map<std::string, std::uint16_t>;

std::optional<std::uint16_t> look_up(Names const& names, std::string const& name) {
    auto const found = names.find(name);
    return found == names.end() ? std::nullopt : std::optional<std::uint16_t>(found->second);
}

}  // namespace

std::optional<std::uint16_t> key_code(std::string const& name) {
    static Names const names{
        {"a", KEY_A}, {"b", KEY_B}, {"c", KEY_C},         {"d", KEY_D},         {"e", KEY_E},        {"f", KEY_F},
        {"g", KEY_G}, {"h", KEY_H}, {"i", KEY_I},         {"j", KEY_J},         {"k", KEY_K},        {"l", KEY_L},
        {"m", KEY_M}, {"n", KEY_N}, {"o", KEY_O},         {"p", KEY_P},         {"q", KEY_Q},        {"r", KEY_R},
        {"s", KEY_S}, {"t", KEY_T}, {"u", KEY_U},         {"v", KEY_V},         {"w", KEY_W},        {"x", KEY_X},
        {"y", KEY_Y}, {"z", KEY_Z}, {"power", KEY_POWER}, {"enter", KEY_ENTER}, {"space", KEY_SPACE}};
    return look_up(names, name);
}

std::optional<std::uint16_t> event_type(std::string const& name) {
    static Names const names{{"EV_SYN", EV_SYN}, {"EV_KEY", EV_KEY}, {"EV_REL", EV_REL}, {"EV_ABS", EV_ABS},
                             {"EV_MSC", EV_MSC}, {"EV_SW", EV_SW},   {"EV_LED", EV_LED}, {"EV_SND", EV_SND},
                             {"EV_REP", EV_REP}, {"EV_FF", EV_FF},   {"EV_PWR", EV_PWR}};
    return look_up(names, name);
}

}  // namespace bench::hypervisor
