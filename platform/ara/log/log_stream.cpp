#include "ara/log/log_stream.h"

#include "ara/log/log_engine.h"

namespace ara::log {

LogStream::LogStream(Log_context const& context, LogLevel level) noexcept
    : context_(context.logs(level) ? &context : nullptr), level_(level) {}

LogStream::~LogStream() {
    if (is_enabled()) {
        arguments_.finish();
        Log_engine::instance().submit(*context_, level_, arguments_);
    }
}

}  // namespace ara::log
