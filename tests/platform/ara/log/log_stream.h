#ifndef ARA_LOG_LOG_STREAM_H
#define ARA_LOG_LOG_STREAM_H

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace ara::log {

enum class LogLevel : std::uint8_t { kOff, kFatal, kError, kWarn, kInfo, kDebug, kVerbose };

/// One message in the making, told when it ends. It is kept in the object itself, so that any signal handler may log;
/// what has no room is left out.
class LogStream {
 public:
    LogStream(std::string_view context, LogLevel level, bool is_wanted) noexcept;
    ~LogStream();
    LogStream(LogStream const&) = delete;
    LogStream& operator=(LogStream const&) = delete;

    LogStream& operator<<(std::string_view text) noexcept {
        add(" ");
        add(text);
        return *this;
    }
    LogStream& operator<<(char const* text) noexcept { return *this << std::string_view(text); }
    LogStream& operator<<(std::string const& text) noexcept { return *this << std::string_view(text); }
    LogStream& operator<<(char character) noexcept { return *this << std::string_view(&character, 1); }
    LogStream& operator<<(bool value) noexcept { return *this << (value ? "true" : "false"); }
    LogStream& operator<<(std::vector<std::uint8_t> const& bytes) noexcept;
    LogStream& operator<<(void const* address) = delete;  // would otherwise be logged as a boolean

    template <class Number, class = std::enable_if_t<std::is_integral_v<Number>>>
    LogStream& operator<<(Number value) noexcept {
        std::array<char, 24> digits{};
        auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        return *this << std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
    }

 private:
    void add(std::string_view text) noexcept;

    bool const is_wanted_;
    std::size_t length_{0};
    std::array<char, 1500> text_;
};

}  // namespace ara::log

#endif
