#include "ara/log/text_sink.h"

#include "ara/log/argument_decoder.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace ara::log {

namespace {

constexpr std::uintmax_t k_file_limit = std::uintmax_t{16} * 1024 * 1024;

char const* name(LogLevel level) {
    static constexpr std::array<char const*, 7> names{"off", "fatal", "error", "warn", "info", "debug", "verbose"};
    return names.at(static_cast<std::size_t>(level));
}

std::string line(Queued_message const& message) {
    auto const& header = message.header;
    std::array<char, 64> prefix{};
    std::snprintf(prefix.data(), prefix.size(), "%u.%04u %-7s %-4s ", header.timestamp / 10000,
                  header.timestamp % 10000, name(header.level), header.context->id.c_str());
    return prefix.data() + to_text(decode_arguments(message.arguments.data(), header.size)) + '\n';
}

/// Writes a line a message to standard error.
class Console_sink : public Log_sink {
 public:
    void add_context(Log_context& /*context*/) override {}
    void write(Queued_message const& message) override { std::cerr << line(message); }
};

/// Writes fatal messages alone to standard error.
class Fatal_sink : public Log_sink {
 public:
    explicit Fatal_sink(std::string application_id) : application_id_(std::move(application_id)) {}

    void add_context(Log_context& /*context*/) override {}
    void write(Queued_message const& message) override {
        if (message.header.level == LogLevel::kFatal) {
            auto const text = to_text(decode_arguments(message.arguments.data(), message.header.size));
            write_at_once(application_id_ + ": " + text + '\n');
        }
    }
    bool has_room() override { return false; }  // the log's own place decides when a message goes
    void miss(Queued_message const& message) override { write(message); }

 private:
    // A line is shorter than what a pipe takes in one piece, so that one that is ready does not block.
    static void write_at_once(std::string const& line) {
        pollfd error_output{STDERR_FILENO, POLLOUT, 0};
        if (::poll(&error_output, 1, 0) == 1 && (error_output.revents & POLLOUT) != 0) {
            [[maybe_unused]] auto const written = ::write(STDERR_FILENO, line.data(), line.size());
        }
    }

    std::string application_id_;
};

/// Writes a line a message to a file, and begins anew when that is large.
class File_sink : public Log_sink {
 public:
    explicit File_sink(std::filesystem::path path) : path_(std::move(path)), file_(path_, std::ios::app) {}

    bool is_open() const { return file_.is_open(); }
    void add_context(Log_context& /*context*/) override {}

    void write(Queued_message const& message) override {
        file_ << line(message) << std::flush;
        if (file_.tellp() >= static_cast<std::streamoff>(k_file_limit)) {
            start_anew();
        }
    }

 private:
    void start_anew() {
        file_.close();
        std::error_code ignored;
        std::filesystem::rename(path_, path_.string() + ".1", ignored);
        file_.open(path_, std::ios::trunc);
    }

    std::filesystem::path path_;
    std::ofstream file_;
};

}  // namespace

std::unique_ptr<Log_sink> make_console_sink() {
    return std::make_unique<Console_sink>();
}

std::unique_ptr<Log_sink> make_fatal_sink(std::string application_id) {
    return std::make_unique<Fatal_sink>(std::move(application_id));
}

std::unique_ptr<Log_sink> make_file_sink(std::string const& directory, std::string const& application_id) {
    auto sink = std::make_unique<File_sink>(std::filesystem::path(directory) / (application_id + ".log"));
    return sink->is_open() ? std::move(sink) : nullptr;
}

}  // namespace ara::log
