// Three parties: the consumer, which alone calls the sink; libdlt's housekeeper, a thread that looks for a log daemon
// and takes what it says; and the log daemon, which tells a context's level when it has heard of a context without one,
// and when a viewer changes it.

#include "ara/log/dlt_sink.h"

#include "ara/log/exit_patience.h"
#include "ara/log/told_levels.h"
#include "base/signals.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <utility>

#include <dlt/dlt.h>

namespace ara::log {

static_assert(type_info::k_bool == DLT_TYPE_INFO_BOOL && type_info::k_signed == DLT_TYPE_INFO_SINT &&
              type_info::k_unsigned == DLT_TYPE_INFO_UINT && type_info::k_string == DLT_TYPE_INFO_STRG &&
              type_info::k_raw == DLT_TYPE_INFO_RAWD && type_info::k_utf8 == DLT_SCOD_UTF8);
static_assert(static_cast<int>(LogLevel::kFatal) == DLT_LOG_FATAL &&
              static_cast<int>(LogLevel::kVerbose) == DLT_LOG_VERBOSE);
static_assert(k_id_length == DLT_ID_SIZE);

namespace {

class Dlt_sink : public Log_sink {
 public:
    Dlt_sink(std::string application_id, std::string description)
        : application_id_(std::move(application_id)), description_(std::move(description)) {
        // What libdlt has to say about itself would go to standard output.
        ::setenv("DLT_LOG_LEVEL", "0", 0);
        try_to_start();
    }

    void tend() override {
        if (!started_) {
            try_to_start();
        }
        for (auto const& told : Told_levels::instance().take()) {
            auto const registration =
                std::find_if(registrations_.begin(), registrations_.end(),
                             [&told](auto const& candidate) { return candidate.context.id == told.context; });
            if (registration != registrations_.end()) {
                heed(*registration, told);
            }
        }
    }

    void add_context(Log_context& context) override {
        auto& registration = registrations_.emplace_back(context);
        context.remote = &registration.handle;
        if (started_) {
            enter(registration);
        }
    }

    bool has_room() override {
        return started_ &&
               (has_free_buffer() || (::dlt_user_log_resend_buffer() == DLT_RETURN_OK && has_free_buffer()));
    }

    // libdlt takes a message in a buffer of ours whatever level a daemon has told it since the message was logged.
    void write(Queued_message const& message) override {
        auto* const context = static_cast<DltContext*>(message.header.context->remote);
        auto const level = static_cast<DltLogLevelType>(message.header.level);
        DltContextData data{};
        auto* const arguments = const_cast<char*>(message.arguments.data());  // NOLINT(*-const-cast): not written to
        if (!started_ || ::dlt_user_log_write_start_w_given_buffer(context, &data, level, arguments,
                                                                   message.header.size, message.header.count) <= 0) {
            return;
        }
        data.use_timestamp = DLT_USER_TIMESTAMP;
        data.user_timestamp = message.header.timestamp;
        ::dlt_user_log_write_finish_w_given_buffer(&data);
    }

 private:
    using Clock = std::chrono::steady_clock;

    struct Registration {
        explicit Registration(Log_context& its_context) : context(its_context) {}

        Log_context& context;
        DltContext handle{};
        Pipe_identity pipe{};  ///< of the daemon that has told a level last
    };

    // A message in libdlt's buffer is a little larger than its arguments.
    static bool has_free_buffer() {
        constexpr int k_largest = 2048;
        int size = 0;
        int used = 0;
        return ::dlt_user_check_buffer(&size, &used) == DLT_RETURN_OK && used + k_largest <= size;
    }

    // A libdlt that has failed halfway takes itself for initialised, and has no housekeeper, until it is freed.
    void try_to_start() {
        auto const now = Clock::now();
        if (now < next_try_) {
            return;
        }
        next_try_ = now + std::chrono::seconds(1);
        // libdlt cancels its threads at its end, which a signal handler that has just begun on one of them does not
        // outlive.
        base::All_signals_blocked const blocked;
        started_ = ::dlt_init() == DLT_RETURN_OK;
        if (!started_) {
            ::dlt_free();
            tell_failure();
            return;
        }
        ::dlt_register_app(application_id_.c_str(), description_.c_str());  // kept when the pipe is full
        for (auto& registration : registrations_) {
            enter(registration);
        }
    }

    void tell_failure() {
        if (!std::exchange(failure_told_, true)) {
            std::fprintf(stderr, "%s: libdlt can't be initialised (its pipes are in %s); tried again each second\n",
                         application_id_.c_str(), Told_levels::instance().directory().c_str());
        }
    }

    // A daemon that is there now says nothing to a registration with a level: what it tells later is no first word. One
    // that isn't has left libdlt with something to send, the application's registration if nothing else.
    static void enter(Registration& registration) {
        bool const is_there = ::dlt_user_log_resend_buffer() != DLT_RETURN_ERROR;
        registration.pipe = is_there ? Told_levels::instance().pipe() : Pipe_identity{};
        auto const& context = registration.context;
        ::dlt_register_context_ll_ts(&registration.handle, context.id.c_str(), context.description.c_str(),
                                     context.own_threshold, DLT_TRACE_STATUS_OFF);
        ::dlt_register_log_level_changed_callback(&registration.handle, &Dlt_sink::told);
    }

    // libdlt's callback, on its housekeeper. What was told is heeded by the consumer, which may be asleep.
    static void told(char* context, std::uint8_t level, std::uint8_t /*trace_status*/) {
        Told_levels::instance().add({context, ::strnlen(context, k_id_length)}, level);
        Log_engine::instance().wake_writer();
    }

    // The first word of a daemon that came late is its default, and the context's own level is what is meant.
    // Everything later is what a viewer wants.
    static void heed(Registration& registration, Told_level const& told) {
        auto& context = registration.context;
        if (registration.pipe == told.pipe) {
            context.threshold = told.level;
            return;
        }
        registration.pipe = told.pipe;
        context.threshold = context.own_threshold;
        if (told.level != context.own_threshold) {
            ::dlt_unregister_context(&registration.handle);
            enter(registration);
        }
    }

    std::string const application_id_;
    std::string const description_;
    bool started_{false};
    bool failure_told_{false};
    Clock::time_point next_try_;
    std::deque<Registration> registrations_;  // libdlt keeps the addresses of the handles
};

}  // namespace

std::unique_ptr<Log_sink> make_dlt_sink(std::string const& application_id, std::string const& description) {
    return std::make_unique<Dlt_sink>(application_id, description);
}

// Freeing alone would drop what libdlt keeps; libdlt's own last try waits for a daemon that was not there yet.
void end_dlt() {
    Exit_patience patience;
    for (;;) {
        auto const outcome = ::dlt_user_log_resend_buffer();
        if (outcome != DLT_RETURN_PIPE_FULL) {
            ::dlt_set_resend_timeout_atexit(static_cast<std::uint32_t>(Exit_patience::k_without_progress.count()));
            ::dlt_user_atexit_blow_out_user_buffer();
            break;
        }
        int size = 0;
        int used = 0;
        ::dlt_user_check_buffer(&size, &used);
        if (!patience.waits_for(static_cast<std::uint64_t>(used))) {
            break;
        }
    }
    ::dlt_free();
}

}  // namespace ara::log
