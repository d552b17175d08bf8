#ifndef TESTS_SUPPORT_LOG_CAPTURE_H
#define TESTS_SUPPORT_LOG_CAPTURE_H

#include "ara/log/argument_decoder.h"
#include "ara/log/logging.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>

namespace test_support {

using Bytes = std::vector<std::uint8_t>;

/// One streamed insertion, decoded from the log queue: text, boolean, signed or unsigned number, or bytes.
using Log_argument = ara::log::Argument;

/// One logged message as it left the code under test.
struct Log_message {
    ara::log::LogLevel level;
    std::string context;  ///< context id; "DFLT" for the default context
    std::vector<Log_argument> arguments;
};

bool operator==(Log_message const& left, Log_message const& right);
std::ostream& operator<<(std::ostream& out, Log_message const& message);

/// Everything logged by any thread since it was made. While it lives all levels are logged, and nothing is dropped.
class Log_capture {
 public:
    Log_capture();
    ~Log_capture();
    Log_capture(Log_capture const&) = delete;
    Log_capture& operator=(Log_capture const&) = delete;

    /// All messages so far, in the order in which they were logged.
    std::vector<Log_message> messages();

    /// Messages of one level so far.
    std::vector<Log_message> messages(ara::log::LogLevel level);

    /// Messages that are at least as severe as a level so far: `at_least(kInfo)` leaves out debug and verbose.
    std::vector<Log_message> at_least(ara::log::LogLevel level);

    /// Forgets what was captured so far.
    void clear();

 private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

inline Log_argument make_log_argument(Log_argument argument) {
    return argument;
}
inline Log_argument make_log_argument(char const* text) {
    return std::string(text);
}
inline Log_argument make_log_argument(std::string_view text) {
    return std::string(text);
}
inline Log_argument make_log_argument(std::string const& text) {
    return text;
}
inline Log_argument make_log_argument(Bytes const& bytes) {
    return bytes;
}
template <class Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
Log_argument make_log_argument(Number number) {
    if constexpr (std::is_same_v<Number, bool>) {
        return number;
    } else if constexpr (std::is_signed_v<Number>) {
        return static_cast<std::int64_t>(number);
    } else {
        return static_cast<std::uint64_t>(number);
    }
}

/// The message that a default-context call with these insertions makes:
/// `EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kInfo, "Consumed VirtIO command: ", "Run")))`.
template <class... Arguments>
Log_message logged(ara::log::LogLevel level, Arguments const&... arguments) {
    return {level, "DFLT", {make_log_argument(arguments)...}};
}

/// The same for another context: `logged_in("SNCC", LogLevel::kInfo, "...")`.
template <class... Arguments>
Log_message logged_in(std::string context, ara::log::LogLevel level, Arguments const&... arguments) {
    return {level, std::move(context), {make_log_argument(arguments)...}};
}

}  // namespace test_support

#endif
