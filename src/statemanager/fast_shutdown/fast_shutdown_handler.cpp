#include "statemanager/fast_shutdown/fast_shutdown_handler.h"

#include "ara/log/logging.h"
#include "base/system_error.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace ximo::ap::statemanager::fast_shutdown {

namespace {

// The reason is taken before the message is begun, which may itself make system calls.
void report_failure(char const* what, std::string const& object) {
    std::string const reason = base::system_error_text(errno);
    ara::log::LogError() << what << object << " Error: " << reason;
}

// What the report of a short write shows as the remainder starts with the last byte that was written.
void report_short_write(std::size_t written, std::string const& command) {
    std::string const remainder = command.substr(written - 1, command.size() - written);
    ara::log::LogWarn() << "Only part of command written: " << command.substr(0, written)
                        << "Try to write remaining command: " << remainder;
}

}  // namespace

Fast_shutdown_handler::Fast_shutdown_handler(std::string const& channel)
    : descriptor_(::open(channel.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)), open_(descriptor_ >= 0) {
    if (!open_) {
        report_failure("Failed to open file:", channel);
    }
}

Fast_shutdown_handler::~Fast_shutdown_handler() {
    if (open_ && ::close(descriptor_) != 0) {
        std::string const reason = base::system_error_text(errno);
        ara::log::LogError() << "Failed to close file: PATH: /run/adaptive/poweroff"
                             << " Error: " << reason;
    }
}

void Fast_shutdown_handler::process_lookup() const {
    ara::log::LogInfo() << "Lookup for PM daemon PID";
    write_command("lookup vyn_per_daemon\n");
}

void Fast_shutdown_handler::start_fast_shutdown(std::chrono::milliseconds timeout) const {
    if (!is_possible()) {
        return;
    }
    shutdown_pm();
    call_exit_app(timeout);
}

bool Fast_shutdown_handler::is_possible() const {
    return open_;
}

void Fast_shutdown_handler::shutdown_pm() const {
    ara::log::LogInfo() << "Shutting down PM daemon";
    write_command("terminate\n");
}

void Fast_shutdown_handler::call_exit_app(std::chrono::milliseconds timeout) const {
    ara::log::LogInfo() << "Starting ExitApp";
    write_command("poweroff " + std::to_string(timeout.count()) + "\n");
}

void Fast_shutdown_handler::write_command(std::string const& command) const {
    if (!open_) {
        ara::log::LogError() << "File descriptor of PowerOFF not valid";
        return;
    }
    long written = ::write(descriptor_, command.data(), command.size());
    write_info(written, command);
}

void Fast_shutdown_handler::write_info(long& written, std::string const& command) const {
    if (written < 0) {
        report_failure("Failed to write command: ", command);
    } else if (static_cast<std::size_t>(written) == command.size()) {
        ara::log::LogVerbose() << "Command send: " << command;
    } else {
        report_short_write(static_cast<std::size_t>(written), command);
    }
}

}  // namespace ximo::ap::statemanager::fast_shutdown
