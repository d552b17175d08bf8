#include "services/user_data_names.h"

#include <cstddef>

namespace services {

namespace {

constexpr std::size_t k_awake_bit = 7;       // of byte 0, set for as long as the machine takes part
constexpr std::size_t k_ecu_alive_bit = 16;  // of the network requests

template <class Name>
std::vector<std::string> names_of_set_bits(Octets const& bytes, Name const& name) {
    std::vector<std::string> names;
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        if ((bytes[bit / 8] >> bit % 8 & 1U) != 0) {
            names.push_back(name(bit));
        }
    }
    return names;
}

bool lies_in(std::size_t bit, std::size_t offset, std::size_t bytes) {
    return bit / 8 >= offset && bit / 8 < offset + bytes;
}

std::string user_data_name(std::size_t bit, User_data_layout const& layout) {
    if (bit == layout.cwu_bit_position) {
        return "car wake-up";
    }
    if (bit == k_awake_bit) {
        return "awake";
    }
    if (lies_in(bit, layout.ac_offset, layout.ac_bytes)) {
        return "AC " + std::to_string(bit - std::size_t{layout.ac_offset} * 8 + 1);
    }
    if (lies_in(bit, layout.cab_offset, layout.cab_bytes)) {
        return "CAB " + std::to_string(bit - std::size_t{layout.cab_offset} * 8);
    }
    return "bit " + std::to_string(bit);
}

}  // namespace

User_data_layout layout_in(nlohmann::json const& configuration) {
    User_data_layout layout;
    auto const section = nlohmann::json::json_pointer("/ap_statemanager/NmUserDataConfig");
    if (!configuration.contains(section) || !configuration.at(section).is_object()) {
        return layout;
    }
    auto const read = [&](char const* key, std::uint32_t& value) {
        auto const& members = configuration.at(section);
        if (members.contains(key) && members.at(key).is_number_integer() && members.at(key).get<std::int64_t>() >= 0) {
            value = members.at(key).get<std::uint32_t>();
        }
    };
    read("CWUBitPosition", layout.cwu_bit_position);
    read("ACOffset", layout.ac_offset);
    read("ACBytes", layout.ac_bytes);
    read("CABOffset", layout.cab_offset);
    read("CABBytes", layout.cab_bytes);
    return layout;
}

std::vector<std::string> user_data_names(Octets const& data, User_data_layout const& layout) {
    return names_of_set_bits(data, [&](std::size_t bit) { return user_data_name(bit, layout); });
}

std::vector<std::string> network_state_names(Octets const& state) {
    return names_of_set_bits(state, [](std::size_t bit) {
        return bit == k_ecu_alive_bit ? std::string("ECU alive") : "CAB " + std::to_string(bit);
    });
}

std::string enumerate(std::vector<std::string> const& names) {
    std::string text;
    for (auto const& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text.empty() ? "none" : text;
}

}  // namespace services
