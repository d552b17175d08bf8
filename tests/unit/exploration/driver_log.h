#ifndef TESTS_UNIT_EXPLORATION_DRIVER_LOG_H
#define TESTS_UNIT_EXPLORATION_DRIVER_LOG_H

#include "ara/log/argument_decoder.h"
#include "ara/log/log_engine.h"
#include "support/log_tap.h"

#include <string>
#include <vector>

namespace exploration {

/// What the driver logs at level info or worse, while this object lives. Unlike a capture of everything it takes no
/// other message apart, of which there are millions here.
class Driver_log {
 public:
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
    test_support::Log_tap const tap_{[this](ara::log::Queued_message const& message) { add(message); }};
};

}  // namespace exploration

#endif
