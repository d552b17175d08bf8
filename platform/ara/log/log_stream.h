#ifndef ARA_LOG_LOG_STREAM_H
#define ARA_LOG_LOG_STREAM_H

#include "ara/log/common.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ara::log {

/// One log message in the making: text, integers, booleans and bytes in the order in which they are inserted, each a
/// typed argument of its own. The message is handed on when the stream ends. Made by the Log... functions only.
class LogStream {
 public:
    LogStream& operator<<(char const* text) noexcept;
    LogStream& operator<<(std::string_view text) noexcept;
    LogStream& operator<<(std::string const& text) noexcept;
    LogStream& operator<<(bool value) noexcept;
    LogStream& operator<<(std::int8_t value) noexcept;
    LogStream& operator<<(std::int16_t value) noexcept;
    LogStream& operator<<(std::int32_t value) noexcept;
    LogStream& operator<<(std::int64_t value) noexcept;
    LogStream& operator<<(std::uint8_t value) noexcept;
    LogStream& operator<<(std::uint16_t value) noexcept;
    LogStream& operator<<(std::uint32_t value) noexcept;
    LogStream& operator<<(std::uint64_t value) noexcept;
    LogStream& operator<<(std::vector<std::uint8_t> const& bytes) noexcept;
};

}  // namespace ara::log

#endif
