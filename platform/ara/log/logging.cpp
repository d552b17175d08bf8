#include "ara/log/logging.h"

#include "ara/log/dlt_sink.h"
#include "ara/log/log_engine.h"
#include "ara/log/text_sink.h"

#include <atomic>
#include <cstdlib>

namespace ara::log {

namespace {

void add_sinks(Log_engine& engine, std::string const& application_id, std::string const& description, LogLevel level,
               LogMode mode, std::string const& directory) {
    if (has_mode(mode, LogMode::kRemote)) {
        engine.add_sink(make_dlt_sink(application_id, description), level);
        if (!has_mode(mode, LogMode::kConsole)) {
            engine.add_sink(make_fatal_sink(application_id), level);
        }
        std::atexit(end_dlt);  // after libdlt registered its own handler, so that it runs before that one
    }
    if (has_mode(mode, LogMode::kConsole)) {
        engine.add_sink(make_console_sink(), level);
    }
    if (has_mode(mode, LogMode::kFile)) {
        if (auto sink = make_file_sink(directory, application_id)) {
            engine.add_sink(std::move(sink), level);
        } else {
            LogError() << "Log file can't be opened in directory: " << directory;
        }
    }
}

}  // namespace

void InitLogging(std::string const& application_id, std::string const& description, LogLevel level, LogMode mode,
                 std::string const& directory) {
    static std::atomic<bool> initialised{false};
    if (initialised.exchange(true)) {
        LogWarn() << "Logging is already initialised; ignored for application: " << application_id;
        return;
    }
    auto& engine = Log_engine::instance();
    add_sinks(engine, application_id.substr(0, k_id_length), description, level, mode, directory);
    std::atexit([] { Log_engine::instance().stop_writer(); });
    engine.start_writer();
}

Logger& CreateLogger(std::string const& context_id, std::string const& description, LogLevel level) {
    return Log_engine::instance().logger(context_id, description, level);
}

std::uint64_t LostMessages() noexcept {
    return Log_engine::instance().dropped();
}

LogStream LogFatal() noexcept {
    return Log_engine::instance().default_logger().LogFatal();
}
LogStream LogError() noexcept {
    return Log_engine::instance().default_logger().LogError();
}
LogStream LogWarn() noexcept {
    return Log_engine::instance().default_logger().LogWarn();
}
LogStream LogInfo() noexcept {
    return Log_engine::instance().default_logger().LogInfo();
}
LogStream LogDebug() noexcept {
    return Log_engine::instance().default_logger().LogDebug();
}
LogStream LogVerbose() noexcept {
    return Log_engine::instance().default_logger().LogVerbose();
}

}  // namespace ara::log
