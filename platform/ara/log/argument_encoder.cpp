#include "ara/log/argument_encoder.h"

#include <algorithm>
#include <charconv>

namespace ara::log {

namespace {

constexpr std::size_t k_prefix_size = 4 + 2;  // type info and length

bool is_inside_character(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

// Length of the longest prefix of at most `size` bytes that does not end inside a UTF-8 character.
std::size_t whole_characters(std::string_view text, std::size_t size) noexcept {
    auto const cut = size;
    while (size > 0 && size < text.size() && is_inside_character(text[size])) {
        --size;
    }
    return size == 0 ? cut : size;
}

}  // namespace

void Argument_encoder::add_text(std::string_view text) noexcept {
    auto const part = fitting(text.size(), k_prefix_size + 1);
    if (!part) {
        return;
    }
    auto const whole = *part < text.size() ? whole_characters(text, *part) : *part;
    cut_ += *part - whole;
    put_variable(type_info::k_string | type_info::k_utf8, text.data(), whole, true);
}

void Argument_encoder::add_bytes(std::uint8_t const* bytes, std::size_t size) noexcept {
    if (auto const part = fitting(size, k_prefix_size)) {
        put_variable(type_info::k_raw, bytes, *part, false);
    }
}

// How many bytes of an argument fit, nothing when not even its prefix does; the rest counts as cut.
std::optional<std::size_t> Argument_encoder::fitting(std::size_t size, std::size_t overhead) noexcept {
    if (!has_room(overhead)) {
        cut_ += size;
        return std::nullopt;
    }
    auto const part = std::min(size, k_capacity - k_note_room - size_ - overhead);
    cut_ += size - part;
    return part;
}

void Argument_encoder::put_variable(std::uint32_t info, void const* data, std::size_t size, bool terminated) noexcept {
    auto const length = static_cast<std::uint16_t>(size + (terminated ? 1 : 0));
    put(&info, sizeof info);
    put(&length, sizeof length);
    if (size != 0) {
        put(data, size);
    }
    if (terminated) {
        put("", 1);
    }
    ++count_;
}

void Argument_encoder::finish() noexcept {
    if (cut_ == 0) {
        return;
    }
    std::array<char, 40> note{'['};
    auto* const end = std::to_chars(note.data() + 1, note.data() + 21, cut_).ptr;
    constexpr std::string_view tail = " bytes cut]";
    std::copy(tail.begin(), tail.end(), end);
    auto const size = static_cast<std::size_t>(end - note.data()) + tail.size();
    put_variable(type_info::k_string | type_info::k_utf8, note.data(), size, true);
}

}  // namespace ara::log
