#ifndef TESTS_UNIT_EXPLORATION_DRIVER_LOG_H
#define TESTS_UNIT_EXPLORATION_DRIVER_LOG_H

#include "ara/log/argument_decoder.h"
#include "ara/log/log_engine.h"

#include <string>
#include <vector>

namespace exploration {

/// What the driver logs at level info or worse, while this object lives. Unlike a capture of everything it takes no
/// other message apart, of which there are millions here.
class Driver_log {
 public:
    Driver_log() {
        ara::log::Log_engine::instance().intercept([this](ara::log::Queued_message const& message) { add(message); });
    }
    ~Driver_log() { ara::log::Log_engine::instance().intercept({}); }
    Driver_log(Driver_log const&) = delete;
    Driver_log& operator=(Driver_log const&) = delete;

    void forget() {
        ara::log::Log_engine::instance().drain();
        messages_.clear();
    }

    std::vector<std::vector<ara::log::Argument>> const& messages() {
        ara::log::Log_engine::instance().drain();
        return messages_;
    }

 private:
    void add(ara::log::Queued_message const& message) {
        if (message.header.level <= ara::log::LogLevel::kInfo) {
            messages_.push_back(ara::log::decode_arguments(message.arguments.data(), message.header.size));
        }
    }

    std::vector<std::vector<ara::log::Argument>> messages_;
};

}  // namespace exploration

#endif
