#include "ara/log/dlt_sink.h"

#include <cstdlib>
#include <deque>

#include <dlt/dlt.h>

namespace ara::log {

static_assert(type_info::k_bool == DLT_TYPE_INFO_BOOL && type_info::k_signed == DLT_TYPE_INFO_SINT &&
              type_info::k_unsigned == DLT_TYPE_INFO_UINT && type_info::k_string == DLT_TYPE_INFO_STRG &&
              type_info::k_raw == DLT_TYPE_INFO_RAWD && type_info::k_utf8 == DLT_SCOD_UTF8);
static_assert(static_cast<int>(LogLevel::kFatal) == DLT_LOG_FATAL &&
              static_cast<int>(LogLevel::kVerbose) == DLT_LOG_VERBOSE);

namespace {

class Dlt_sink : public Log_sink {
 public:
    Dlt_sink(std::string const& application_id, std::string const& description, LogLevel level)
        : level_(static_cast<int>(level)) {
        // What libdlt has to say about itself would go to standard output.
        ::setenv("DLT_LOG_LEVEL", "0", 0);
        ::dlt_register_app(application_id.c_str(), description.c_str());
    }

    void add_context(Log_context& context) override {
        auto& remote = contexts_.emplace_back();
        ::dlt_register_context_ll_ts(&remote, context.id.c_str(), context.description.c_str(), level_,
                                     DLT_TRACE_STATUS_OFF);
        context.remote = &remote;
        if (remote.log_level_ptr != nullptr) {
            context.threshold = remote.log_level_ptr;
        }
    }

    void write(Queued_message const& message) override {
        auto* const context = static_cast<DltContext*>(message.header.context->remote);
        auto const level = static_cast<DltLogLevelType>(message.header.level);
        DltContextData data{};
        // libdlt does not write through the pointer.
        auto* const arguments = const_cast<char*>(message.arguments.data());  // NOLINT(*-const-cast)
        if (::dlt_user_log_write_start_w_given_buffer(context, &data, level, arguments, message.header.size,
                                                      message.header.count) <= 0) {
            return;
        }
        data.use_timestamp = DLT_USER_TIMESTAMP;
        data.user_timestamp = message.header.timestamp;
        ::dlt_user_log_write_finish_w_given_buffer(&data);
    }

 private:
    int level_;
    std::deque<DltContext> contexts_;  // libdlt keeps their addresses
};

}  // namespace

std::unique_ptr<Log_sink> make_dlt_sink(std::string const& application_id, std::string const& description,
                                        LogLevel level) {
    return std::make_unique<Dlt_sink>(application_id, description, level);
}

void end_dlt() {
    // Freeing alone would drop what libdlt keeps.
    ::dlt_set_resend_timeout_atexit(static_cast<std::uint32_t>(k_exit_time_limit.count()));
    ::dlt_user_atexit_blow_out_user_buffer();
    ::dlt_free();
}

}  // namespace ara::log
