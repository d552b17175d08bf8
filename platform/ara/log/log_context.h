#ifndef ARA_LOG_LOG_CONTEXT_H
#define ARA_LOG_LOG_CONTEXT_H

#include "ara/log/common.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace ara::log {

/// A named source of messages. Lives until the process ends.
struct Log_context {
    Log_context(std::string context_id, std::string context_description, LogLevel level)
        : id(std::move(context_id)),
          description(std::move(context_description)),
          own_threshold(static_cast<std::int8_t>(level)),
          threshold(own_threshold) {}
    Log_context(Log_context const&) = delete;
    Log_context& operator=(Log_context const&) = delete;
    ~Log_context() = default;

    bool logs(LogLevel level) const noexcept {
        return static_cast<std::int8_t>(level) <= threshold.load(std::memory_order_relaxed);
    }

    std::string id;
    std::string description;
    std::int8_t own_threshold;           ///< the level that it was made with; used by the consumer alone
    std::atomic<std::int8_t> threshold;  ///< most verbose level that is logged: its own, or what a viewer wants
    void* remote{nullptr};               ///< the log daemon's name for the context; used by the consumer alone
};

}  // namespace ara::log

#endif
