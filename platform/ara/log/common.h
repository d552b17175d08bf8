#ifndef ARA_LOG_COMMON_H
#define ARA_LOG_COMMON_H

#include <cstddef>
#include <cstdint>

namespace ara::log {

/// Characters of an application's or a context's id, as DLT has it; longer ones are cut.
constexpr std::size_t k_id_length = 4;

/// How severe a message is; a message is logged when its level is not above the level of its context.
enum class LogLevel : std::uint8_t {
    kOff = 0,
    kFatal = 1,
    kError = 2,
    kWarn = 3,
    kInfo = 4,
    kDebug = 5,
    kVerbose = 6,
};

/// Where messages go; the values are bits and may be combined.
enum class LogMode : std::uint8_t {
    kRemote = 1,
    kFile = 2,
    kConsole = 4,
};

constexpr LogMode operator|(LogMode left, LogMode right) noexcept {
    return static_cast<LogMode>(static_cast<std::uint8_t>(left) | static_cast<std::uint8_t>(right));
}

constexpr bool has_mode(LogMode set, LogMode mode) noexcept {
    return (static_cast<std::uint8_t>(set) & static_cast<std::uint8_t>(mode)) != 0;
}

}  // namespace ara::log

#endif
