#include "holds.h"

#include "base/hex.h"

#include <algorithm>

namespace soak {

namespace {

constexpr unsigned k_most_numbers = 16;

std::uint32_t bits_in(nlohmann::json const& command) {
    auto const bytes = base::from_hex(command.value("bits", "")).value_or(std::vector<std::uint8_t>());
    std::uint32_t bits = 0;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        bits |= static_cast<std::uint32_t>(bytes[place]) << 8 * place;
    }
    return bits;
}

}  // namespace

void Holds::hear(std::string const& application, nlohmann::json const& command) {
    auto& one = all_[application];
    bool const requests = command.at("do") == "request";
    auto const what = command.at("what").get<std::string>();
    if (what == "ecu_alive") {
        one.ecu = requests;
        kept_ecu_ = kept_ecu_ || requests;
        return;
    }
    if (requests) {
        auto const number = command.value("ac", 0U);
        one.number = number <= k_most_numbers ? number : 0;
    }
    if (what == "cwu") {
        one.wake_up = requests;
    } else {
        one.bits = requests ? one.bits | bits_in(command) : one.bits & ~bits_in(command);
    }
    if (!requests && !is_active(one)) {
        one.number = 0;
    }
}

bool Holds::keep_ecu_alive() const {
    return std::any_of(all_.begin(), all_.end(), [](auto const& one) { return one.second.ecu; });
}

bool Holds::keep_com_alive() const {
    return std::any_of(all_.begin(), all_.end(), [this](auto const& one) { return is_active(one.second); });
}

Holds::Bytes Holds::requests() const {
    Bytes bytes{};
    for (auto const& [name, one] : all_) {
        for (std::size_t place = 0; place < sizeof one.bits; ++place) {
            bytes.at(place) |= static_cast<std::uint8_t>(one.bits >> 8 * place);
        }
        bytes[2] |= one.ecu ? 0x01 : 0;
    }
    return bytes;
}

Holds::Bytes Holds::user_data() const {
    Bytes bytes{0x80};
    for (auto const& [name, one] : all_) {
        bytes[0] |= one.wake_up ? 0x40 : 0;
        if (one.number != 0) {
            bytes.at(1 + (one.number - 1) / 8) |= static_cast<std::uint8_t>(1U << (one.number - 1) % 8);
        }
        for (std::size_t place = 0; place < 3; ++place) {
            bytes.at(3 + place) |= static_cast<std::uint8_t>(one.bits >> 8 * place);
        }
    }
    return bytes;
}

}  // namespace soak
