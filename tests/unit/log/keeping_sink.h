#ifndef TESTS_UNIT_LOG_KEEPING_SINK_H
#define TESTS_UNIT_LOG_KEEPING_SINK_H

#include "ara/log/argument_decoder.h"
#include "ara/log/log_engine.h"

#include <string>
#include <vector>

namespace ara::log {

/// Keeps what it is handed; the engine owns it until the process ends.
class Keeping_sink : public Log_sink {
 public:
    explicit Keeping_sink(std::vector<std::string>& lines) : lines_(lines) {}
    void add_context(Log_context& /*context*/) override {}
    void write(Queued_message const& message) override {
        auto const arguments = decode_arguments(message.arguments.data(), message.header.size);
        lines_.push_back(std::to_string(static_cast<int>(message.header.level)) + " " + to_text(arguments));
    }

 private:
    std::vector<std::string>& lines_;
};

}  // namespace ara::log

#endif
