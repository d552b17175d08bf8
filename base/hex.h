#ifndef BASE_HEX_H
#define BASE_HEX_H

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// Two lower-case hexadecimal digits a byte: "00 0a f1". `bytes` is anything that holds bytes or characters.
template <class Bytes>
std::string to_hex(Bytes const& bytes, std::string_view between = " ") {
    constexpr std::string_view k_digits = "0123456789abcdef";
    std::string text;
    for (auto const byte : bytes) {
        auto const value = static_cast<std::uint8_t>(byte);
        text += text.empty() ? "" : between;
        text += k_digits[value >> 4U];
        text += k_digits[value & 0xfU];
    }
    return text;
}

/// The bytes of such a text, with or without blanks between and in either case; nothing when it is none.
inline std::optional<std::vector<std::uint8_t>> from_hex(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t position = 0; position < text.size();) {
        if (text[position] == ' ') {
            ++position;
            continue;
        }
        std::string const pair(text.substr(position, 2));
        if (pair.size() != 2 || std::isxdigit(static_cast<unsigned char>(pair[0])) == 0 ||
            std::isxdigit(static_cast<unsigned char>(pair[1])) == 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
        position += 2;
    }
    return bytes;
}

}  // namespace base

#endif
