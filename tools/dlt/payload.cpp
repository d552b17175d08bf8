#include "tools/dlt/payload.h"

#include "base/hex.h"

#include <cstring>
#include <optional>

namespace dlt {

namespace {

// Bits of the word before each argument.
constexpr std::uint64_t k_length = 0xF;
constexpr std::uint64_t k_bool = 0x10;
constexpr std::uint64_t k_signed = 0x20;
constexpr std::uint64_t k_unsigned = 0x40;
constexpr std::uint64_t k_float = 0x80;
constexpr std::uint64_t k_text = 0x200;
constexpr std::uint64_t k_raw = 0x400;
constexpr std::uint64_t k_named = 0x800;
constexpr std::uint64_t k_fixed_point = 0x1000;

constexpr std::size_t k_length_field = 2;
constexpr std::size_t k_type_field = 4;

// Lengths 1, 2, 3, 4 are 1, 2, 4 and 8 bytes.
std::size_t bytes_of(std::uint64_t type) {
    auto const length = type & k_length;
    return length == 0 || length > 4 ? 0 : std::size_t{1} << (length - 1);
}

std::int64_t as_signed(std::uint64_t value, std::size_t size) {
    auto const unused = 64 - 8 * size;
    return static_cast<std::int64_t>(value << unused) >> unused;
}

std::string floating(std::uint64_t bits, std::size_t size) {
    if (size == sizeof(float)) {
        auto const narrow = static_cast<std::uint32_t>(bits);
        float value = 0;
        std::memcpy(&value, &narrow, sizeof value);
        return std::to_string(value);
    }
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return std::to_string(value);
}

std::string text_without_end(std::string_view bytes) {
    return std::string(bytes.substr(0, bytes.find('\0')));
}

// A name, and a unit for numbers, stand before the value.
void skip_names(std::uint64_t type, Cursor& payload) {
    bool const is_number = (type & (k_signed | k_unsigned | k_float)) != 0;
    auto const name = payload.number(k_length_field);
    auto const unit = is_number ? payload.number(k_length_field) : 0;
    payload.bytes(name + unit);
}

std::optional<std::string> argument(Cursor& payload) {
    auto const type = payload.number(k_type_field);
    auto const size = bytes_of(type);
    if ((type & (k_text | k_raw)) != 0) {
        auto const length = payload.number(k_length_field);
        if ((type & k_named) != 0) {
            payload.bytes(payload.number(k_length_field));
        }
        auto const bytes = payload.bytes(length);
        return (type & k_text) != 0 ? text_without_end(bytes) : base::to_hex(bytes);
    }
    if ((type & k_named) != 0) {
        skip_names(type, payload);
    }
    if ((type & k_bool) != 0) {
        return payload.number(1) != 0 ? "1" : "0";
    }
    if (size == 0 || (type & k_fixed_point) != 0) {
        return std::nullopt;
    }
    auto const value = payload.number(size);
    if ((type & k_signed) != 0) {
        return std::to_string(as_signed(value, size));
    }
    if ((type & k_unsigned) != 0) {
        return std::to_string(value);
    }
    return (type & k_float) != 0 && size >= sizeof(float) ? std::optional<std::string>(floating(value, size))
                                                          : std::nullopt;
}

}  // namespace

std::uint64_t Cursor::number(std::size_t size) {
    auto const field = bytes(size);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < field.size(); ++i) {
        auto const byte = static_cast<unsigned char>(is_big_endian_ ? field[i] : field[field.size() - 1 - i]);
        value = value << 8U | byte;
    }
    return value;
}

std::string_view Cursor::bytes(std::size_t size) {
    good_ = good_ && size <= bytes_.size();
    auto const taken = good_ ? bytes_.substr(0, size) : std::string_view();
    bytes_.remove_prefix(taken.size());
    return taken;
}

std::vector<std::string> arguments_in(Cursor payload, std::size_t count) {
    std::vector<std::string> arguments;
    while (arguments.size() < count && !payload.at_end()) {
        auto text = argument(payload);
        if (!text || !payload.good()) {
            break;
        }
        arguments.push_back(std::move(*text));
    }
    return arguments;
}

}  // namespace dlt
