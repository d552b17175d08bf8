#ifndef ARA_LOG_ARGUMENT_ENCODER_H
#define ARA_LOG_ARGUMENT_ENCODER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <type_traits>

namespace ara::log {

/// Type-info words of the DLT protocol's verbose mode, in host byte order before each argument.
namespace type_info {
constexpr std::uint32_t k_length_mask = 0x0000000fU;  ///< 1, 2, 3, 4 = 8, 16, 32, 64 bits
constexpr std::uint32_t k_bool = 0x00000010U;
constexpr std::uint32_t k_signed = 0x00000020U;
constexpr std::uint32_t k_unsigned = 0x00000040U;
constexpr std::uint32_t k_string = 0x00000200U;
constexpr std::uint32_t k_raw = 0x00000400U;
constexpr std::uint32_t k_utf8 = 0x00008000U;
}  // namespace type_info

/// Encodes the arguments of one message as DLT verbose arguments, one after the other:
///
///     number, boolean   type info (4 bytes), value (1, 2, 4 or 8 bytes)
///     text              type info (4), length with terminator (2), bytes, NUL
///     bytes             type info (4), length (2), bytes
///
/// What does not fit is cut, and a last text argument "[N bytes cut]" says how much.
class Argument_encoder {
 public:
    /// Payload of a DLT message in libdlt's default configuration.
    static constexpr std::size_t k_capacity = 1390;

    // NOLINTNEXTLINE(modernize-use-equals-default,cppcoreguidelines-pro-type-member-init): only what is written is read
    Argument_encoder() noexcept {}

    void add_text(std::string_view text) noexcept;
    void add_bytes(std::uint8_t const* bytes, std::size_t size) noexcept;
    void add_bool(bool value) noexcept {
        auto const byte = static_cast<std::uint8_t>(value);
        add_fixed(type_info::k_bool | 1U, &byte, sizeof byte);
    }
    template <class Number>
    void add_number(Number value) noexcept {
        constexpr std::uint32_t length_code = sizeof(Number) == 1   ? 1
                                              : sizeof(Number) == 2 ? 2
                                              : sizeof(Number) == 4 ? 3
                                                                    : 4;
        add_fixed((std::is_signed_v<Number> ? type_info::k_signed : type_info::k_unsigned) | length_code, &value,
                  sizeof value);
    }

    /// Ends the message: adds the note about what was cut, if anything was.
    void finish() noexcept;

    char const* data() const noexcept { return buffer_.data(); }
    std::size_t size() const noexcept { return size_; }
    std::uint8_t count() const noexcept { return count_; }

 private:
    static constexpr std::size_t k_note_room = 48;  ///< kept free for the note
    static constexpr std::uint8_t k_max_arguments = 254;

    bool has_room(std::size_t size) const noexcept {
        return cut_ == 0 && count_ < k_max_arguments && size_ + size <= k_capacity - k_note_room;
    }
    void put(void const* data, std::size_t size) noexcept {
        std::memcpy(buffer_.data() + size_, data, size);
        size_ += size;
    }
    void add_fixed(std::uint32_t info, void const* value, std::size_t size) noexcept {
        if (!has_room(sizeof info + size)) {
            cut_ += size;
            return;
        }
        put(&info, sizeof info);
        put(value, size);
        ++count_;
    }
    void put_variable(std::uint32_t info, void const* data, std::size_t size, bool terminated) noexcept;
    std::optional<std::size_t> fitting(std::size_t size, std::size_t overhead) noexcept;

    std::size_t size_{0};
    std::size_t cut_{0};
    std::uint8_t count_{0};
    std::array<char, k_capacity> buffer_;
};

}  // namespace ara::log

#endif
