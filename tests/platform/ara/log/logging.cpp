#include "ara/log/logging.h"

#include "base/hex.h"
#include "base/mutex.h"
#include "told/told.h"

#include <algorithm>
#include <map>

namespace ara::log {

namespace {

constexpr std::array k_levels{"off ", "fatal ", "error ", "warn ", "info ", "debug ", "verbose "};

// Destructors of static objects log as well, so neither of these goes.
Logger& default_logger() {
    static auto& logger = *new Logger("DFLT", LogLevel::kVerbose);
    return logger;
}

struct Loggers {
    base::Mutex mutex;
    std::map<std::string, Logger> by_id GUARDED_BY(mutex);
};

}  // namespace

LogStream::LogStream(std::string_view context, LogLevel level, bool is_wanted) noexcept : is_wanted_(is_wanted) {
    add(k_levels[static_cast<std::size_t>(level)]);
    add(context);
}

LogStream::~LogStream() {
    if (is_wanted_) {
        told::tell({"log", {text_.data(), length_}});
    }
}

LogStream& LogStream::operator<<(std::vector<std::uint8_t> const& bytes) noexcept {
    add(" ");
    add(base::to_hex(bytes, ""));
    return *this;
}

void LogStream::add(std::string_view text) noexcept {
    auto const count = std::min(text.size(), text_.size() - length_);
    std::copy_n(text.begin(), count, text_.begin() + length_);
    length_ += count;
}

void InitLogging(std::string const& application_id, std::string const& description, LogLevel level, LogMode mode,
                 std::string const& directory) {
    told::tell({"log", "init " + application_id + ", " + description + ", " +
                           std::to_string(static_cast<unsigned>(level)) + ", " +
                           std::to_string(static_cast<unsigned>(mode)) + ", '" + directory + "'"});
}

Logger& CreateLogger(std::string const& context_id, std::string const& /*description*/, LogLevel level) {
    static auto& loggers = *new Loggers;
    base::Lock_guard const lock(loggers.mutex);
    auto const [entry, is_new] = loggers.by_id.try_emplace(context_id, std::string_view(), level);
    if (is_new) {
        entry->second = Logger(entry->first, level);
    }
    return entry->second;
}

std::uint64_t LostMessages() noexcept {
    return 0;
}

LogStream LogFatal() noexcept {
    return default_logger().LogFatal();
}
LogStream LogError() noexcept {
    return default_logger().LogError();
}
LogStream LogWarn() noexcept {
    return default_logger().LogWarn();
}
LogStream LogInfo() noexcept {
    return default_logger().LogInfo();
}
LogStream LogDebug() noexcept {
    return default_logger().LogDebug();
}
LogStream LogVerbose() noexcept {
    return default_logger().LogVerbose();
}

}  // namespace ara::log
