#include "bench/network/bits.h"

#include <algorithm>
#include <cctype>

namespace bench::network {

namespace {

bool is_set(std::uint8_t byte) {
    return byte != 0;
}

}  // namespace

bool any(Bits const& bits) {
    return std::any_of(bits.begin(), bits.end(), is_set);
}

bool any_behind(Bits const& bits, std::size_t length) {
    return bits.size() > length && std::any_of(bits.begin() + static_cast<std::ptrdiff_t>(length), bits.end(), is_set);
}

void set_bits(Bits& target, Bits const& bits) {
    for (std::size_t byte = 0; byte < std::min(target.size(), bits.size()); ++byte) {
        target[byte] = static_cast<std::uint8_t>(target[byte] | bits[byte]);
    }
}

void clear_bits(Bits& target, Bits const& bits) {
    for (std::size_t byte = 0; byte < std::min(target.size(), bits.size()); ++byte) {
        target[byte] = static_cast<std::uint8_t>(target[byte] & ~bits[byte]);
    }
}

std::string to_text(Bits const& bits) {
    constexpr char const* digits = "0123456789abcdef";
    std::string text;
    for (auto const byte : bits) {
        text += text.empty() ? "" : " ";
        text += digits[byte >> 4U];
        text += digits[byte & 0xfU];
    }
    return text;
}

std::optional<Bits> from_text(std::string const& text) {
    Bits bits;
    for (std::size_t position = 0; position < text.size();) {
        if (text[position] == ' ') {
            ++position;
            continue;
        }
        auto const pair = text.substr(position, 2);
        if (pair.size() != 2 ||
            !std::all_of(pair.begin(), pair.end(), [](unsigned char digit) { return std::isxdigit(digit) != 0; })) {
            return std::nullopt;
        }
        bits.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
        position += 2;
    }
    return bits;
}

}  // namespace bench::network
