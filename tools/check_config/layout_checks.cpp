// `check_layout` first asks what the daemon asks, whether the areas fit; only of a layout that it takes, where network
// management is used, it asks whether what is sent makes sense.

#include "statemanager/config/json_conversion.h"
#include "tools/check_config/finding.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

namespace statectl::check_config {

namespace {

using Layout = ximo::ap::statemanager::config::Nm_user_data_config;
using Wide = std::uint64_t;

constexpr Wide k_combined_bytes = 4;  // of what all applications ask for together
constexpr Wide k_awake_bit = 7;       // set for as long as the machine takes part
constexpr Wide k_ecu_alive_bit = 16;  // of the requests to network management

constexpr char const* k_section = "NmUserDataConfig";

std::uint32_t number(Scene const& scene, char const* name, std::uint32_t fallback) {
    auto const& value = scene.document.at(std::string(k_section) + '.' + name);
    return value.is_number() ? ximo::ap::statemanager::config::json_to<std::uint32_t>(value) : fallback;
}

// As the daemon reads it, also where it then refuses it.
Layout layout_of(Scene const& scene) {
    Layout layout;
    layout.user_data_bytes = number(scene, "UserDataBytes", layout.user_data_bytes);
    layout.cwu_bit_position = number(scene, "CWUBitPosition", layout.cwu_bit_position);
    layout.ac_offset = number(scene, "ACOffset", layout.ac_offset);
    layout.ac_bytes = number(scene, "ACBytes", layout.ac_bytes);
    layout.cab_offset = number(scene, "CABOffset", layout.cab_offset);
    layout.cab_bytes = number(scene, "CABBytes", layout.cab_bytes);
    layout.max_cab_size_bits = number(scene, "MaxCABSizeBits", layout.max_cab_size_bits);
    auto const& enabled = scene.document.at("NmUserDataConfig.CabBitsEnabled");
    layout.cab_bits_enabled = enabled.is_boolean() ? enabled.get<bool>() : layout.cab_bits_enabled;
    return layout;
}

/// Adds findings about the layout, each with the line of its member.
class Layout_check {
 public:
    Layout_check(Scene const& scene, Findings& findings)
        : scene_(scene), findings_(findings), layout_(layout_of(scene)) {}

    bool areas_fit() {
        auto const ac_end = Wide{layout_.ac_offset} + layout_.ac_bytes;
        auto const cab_end = Wide{layout_.cab_offset} + layout_.cab_bytes;
        bool const fits =
            require(ac_end <= layout_.cab_offset, "CABOffset",
                    "CABOffset is " + text(layout_.cab_offset) + ", inside or before the AC area, which ends at byte " +
                        text(ac_end) + wrapped(ac_end)) &&
            require(cab_end <= layout_.user_data_bytes, "UserDataBytes",
                    "UserDataBytes is " + text(layout_.user_data_bytes) + ", and the CAB area ends at byte " +
                        text(cab_end) + wrapped(cab_end));
        return fits && require(layout_.max_cab_size_bits <= 8 * Wide{layout_.cab_bytes}, "MaxCABSizeBits",
                               "MaxCABSizeBits is " + text(layout_.max_cab_size_bits) + ", and the CAB area has " +
                                   text(8 * Wide{layout_.cab_bytes}) + " bits");
    }

    void areas_work() {
        require(layout_.ac_bytes <= k_combined_bytes, "ACBytes", too_wide("ACBytes", layout_.ac_bytes, "AC"));
        require(layout_.cab_bytes <= k_combined_bytes, "CABBytes", too_wide("CABBytes", layout_.cab_bytes, "CAB"));
        require(layout_.ac_offset > 0 || layout_.ac_bytes == 0, "ACOffset",
                "ACOffset is 0: the AC area covers byte 0, whose bit 7 says that the machine takes part");
        require(layout_.cab_offset > 0 || layout_.cab_bytes == 0, "CABOffset",
                "CABOffset is 0: the CAB area covers byte 0, whose bit 7 says that the machine takes part");
    }

    void car_wake_up_works() {
        Wide const byte = layout_.cwu_bit_position / 8;
        auto const is_in = [&](Wide offset, Wide bytes) { return byte >= offset && byte < offset + bytes; };
        auto const position = "CWUBitPosition is " + text(layout_.cwu_bit_position);
        require(layout_.cwu_bit_position != k_awake_bit, "CWUBitPosition",
                position + ", the bit that says that the machine takes part: a released wake-up clears it") &&
            require(byte < layout_.user_data_bytes, "CWUBitPosition",
                    position + ", outside of the user data: nobody is woken up") &&
            require(!is_in(layout_.ac_offset, layout_.ac_bytes), "CWUBitPosition", position + ", inside the AC area") &&
            require(!is_in(layout_.cab_offset, layout_.cab_bytes), "CWUBitPosition",
                    position + ", inside the CAB area");
    }

    // Without CAB bits the last bytes are cut off, as many as the CAB area has.
    void what_is_sent() {
        auto const end = Wide{layout_.cab_offset} + layout_.cab_bytes;
        require(layout_.cab_bits_enabled || layout_.cab_bytes == 0 || end == layout_.user_data_bytes, "CabBitsEnabled",
                "CabBitsEnabled is false, so the last " + text(layout_.cab_bytes) +
                    " bytes are not sent, but the CAB area ends at byte " + text(end) + " of " +
                    text(layout_.user_data_bytes));
        require(layout_.user_data_bytes > 0, "UserDataBytes", "UserDataBytes is 0: no user data is sent");
    }

 private:
    static std::string text(Wide value) { return std::to_string(value); }
    static std::string wrapped(Wide sum) {
        return sum > std::numeric_limits<std::uint32_t>::max() ? "; the daemon adds up in 32 bits and takes it" : "";
    }
    static std::string too_wide(char const* name, Wide bytes, char const* area) {
        return std::string(name) + " is " + text(bytes) + ": with more than 4 the " + area + " area stays empty";
    }
    bool require(bool holds, char const* name, std::string const& sentence) {
        if (!holds) {
            findings_.push_back({scene_.document.line_of(std::string(k_section) + '.' + name), sentence});
        }
        return holds;
    }

    Scene const& scene_;
    Findings& findings_;
    Layout const layout_;
};

void check_pattern(Scene const& scene, Findings& findings) {
    constexpr char const* k_name = "DefautNMRequestPattern";
    auto const pattern = scene.verdict.config->get_nm_request_pattern();
    auto const line = scene.document.line_of(k_name);
    if (std::all_of(pattern.begin(), pattern.end(), [](std::uint8_t byte) { return byte == 0; })) {
        findings.push_back(
            {line, std::string(k_name) + " sets no bit: a running machine requests nothing of the network"});
    } else if (pattern.size() > k_ecu_alive_bit / 8 && (pattern[k_ecu_alive_bit / 8] & 1U) != 0) {
        findings.push_back({line, std::string(k_name) + " holds bit 16, that of ECU alive: when the last application "
                                                        "releases the ECU, a running machine loses that bit"});
    }
}

}  // namespace

// A layout is told to be wrong also where it is not used yet; what works is asked where network management is used.
void check_layout(Scene const& scene, Findings& findings) {
    if (!scene.document.configuration().is_object()) {
        return;
    }
    Layout_check check(scene, findings);
    if (!check.areas_fit() || !scene.verdict.is_taken || !scene.verdict.config->is_nm_usage_allowed()) {
        return;
    }
    check.areas_work();
    check.car_wake_up_works();
    check.what_is_sent();
    check_pattern(scene, findings);
}

}  // namespace statectl::check_config
