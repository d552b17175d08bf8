#ifndef ARA_LOG_LOG_STREAM_H
#define ARA_LOG_LOG_STREAM_H

#include "ara/log/argument_encoder.h"
#include "ara/log/common.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ara::log {

struct Log_context;

/// One log message in the making: text, integers, booleans and bytes in the order in which they are inserted, each a
/// typed argument of its own. The message is handed on when the stream ends. Made by the Log... functions only.
///
/// The arguments are encoded into the stream itself, so that nothing is shared with any other thread or with a signal
/// handler that interrupts this one until the message is complete. No operation locks, allocates or fails.
class LogStream {
 public:
    LogStream(Log_context const& context, LogLevel level) noexcept;
    ~LogStream();
    LogStream(LogStream const&) = delete;
    LogStream& operator=(LogStream const&) = delete;

    LogStream& operator<<(std::string_view text) noexcept {
        if (is_enabled()) {
            arguments_.add_text(text);
        }
        return *this;
    }
    LogStream& operator<<(char const* text) noexcept {
        return *this << (text != nullptr ? std::string_view(text) : std::string_view("(null)"));
    }
    LogStream& operator<<(std::string const& text) noexcept { return *this << std::string_view(text); }
    LogStream& operator<<(char character) noexcept { return *this << std::string_view(&character, 1); }
    LogStream& operator<<(std::vector<std::uint8_t> const& bytes) noexcept {
        if (is_enabled()) {
            arguments_.add_bytes(bytes.data(), bytes.size());
        }
        return *this;
    }
    LogStream& operator<<(bool value) noexcept {
        if (is_enabled()) {
            arguments_.add_bool(value);
        }
        return *this;
    }
    LogStream& operator<<(signed char value) noexcept { return number(value); }
    LogStream& operator<<(short value) noexcept { return number(value); }
    LogStream& operator<<(int value) noexcept { return number(value); }
    LogStream& operator<<(long value) noexcept { return number(value); }
    LogStream& operator<<(long long value) noexcept { return number(value); }
    LogStream& operator<<(unsigned char value) noexcept { return number(value); }
    LogStream& operator<<(unsigned short value) noexcept { return number(value); }
    LogStream& operator<<(unsigned int value) noexcept { return number(value); }
    LogStream& operator<<(unsigned long value) noexcept { return number(value); }
    LogStream& operator<<(unsigned long long value) noexcept { return number(value); }
    LogStream& operator<<(void const* address) = delete;  // would otherwise be logged as a boolean

 private:
    bool is_enabled() const noexcept { return context_ != nullptr; }

    template <class Number>
    LogStream& number(Number value) noexcept {
        if (is_enabled()) {
            arguments_.add_number(value);
        }
        return *this;
    }

    Log_context const* context_;  ///< null when the level is not logged
    LogLevel level_;
    Argument_encoder arguments_;
};

}  // namespace ara::log

#endif
