#include "bench/service_manager/bus_call.h"

#include <cstdlib>

namespace bench::service_manager {

namespace {

constexpr char const* k_units = "/org/freedesktop/systemd1/unit";

using Text = std::unique_ptr<char, decltype(&std::free)>;

}  // namespace

std::string path_of(std::string const& unit) {
    char* path = nullptr;
    sd_bus_path_encode(k_units, unit.c_str(), &path);
    Text const owner(path, &std::free);
    return path != nullptr ? path : "/";
}

std::string unit_at(std::string const& path) {
    char* unit = nullptr;
    sd_bus_path_decode(path.c_str(), k_units, &unit);
    Text const owner(unit, &std::free);
    return unit != nullptr ? unit : "";
}

std::string first_text(sd_bus_message* call) {
    char const* text = nullptr;
    char type = 0;
    if (sd_bus_message_peek_type(call, &type, nullptr) > 0 && type == 's') {
        sd_bus_message_read(call, "s", &text);
    }
    std::string result = text != nullptr ? text : "";
    sd_bus_message_rewind(call, 1);
    return result;
}

std::string second_text(sd_bus_message* call) {
    char const* text = nullptr;
    if (sd_bus_message_has_signature(call, "ss") > 0) {
        sd_bus_message_read(call, "ss", nullptr, &text);
    }
    std::string result = text != nullptr ? text : "";
    sd_bus_message_rewind(call, 1);
    return result;
}

std::vector<std::string> read_texts(sd_bus_message* call) {
    std::vector<std::string> result;
    if (sd_bus_message_enter_container(call, 'a', "s") <= 0) {
        return result;
    }
    char const* text = nullptr;
    while (sd_bus_message_read(call, "s", &text) > 0) {
        result.emplace_back(text);
    }
    sd_bus_message_exit_container(call);
    return result;
}

std::vector<std::pair<std::string, std::string>> properties_of(Unit const& unit) {
    return {{"Id", unit.name}, {"LoadState", "loaded"}, {"ActiveState", unit.active}, {"SubState", unit.sub_state()}};
}

void append_units(sd_bus_message* reply, std::vector<Unit const*> const& units) {
    sd_bus_message_open_container(reply, 'a', "(ssssssouso)");
    for (Unit const* const unit : units) {
        sd_bus_message_append(reply, "(ssssssouso)", unit->name.c_str(), unit->name.c_str(), "loaded",
                              unit->active.c_str(), unit->sub_state().c_str(), "", path_of(unit->name).c_str(), 0U, "",
                              "/");
    }
    sd_bus_message_close_container(reply);
}

}  // namespace bench::service_manager
