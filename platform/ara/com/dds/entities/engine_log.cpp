#include "ara/com/dds/entities/engine_log.h"

#include "ara/log/logging.h"
#include "base/mutex.h"

#include <chrono>
#include <string_view>

#include <dds/ddsrt/log.h>

namespace ara::com::dds {

namespace {

/// Lets a number of messages through in each second. Thread-safe.
class Limit {
 public:
    bool admits() {
        constexpr int k_most_in_a_second = 10;
        base::Lock_guard const lock(mutex_);
        auto const now = std::chrono::steady_clock::now();
        if (now - begin_ >= std::chrono::seconds(1)) {
            begin_ = now;
            count_ = 0;
        }
        return ++count_ <= k_most_in_a_second;
    }

 private:
    base::Mutex mutex_;
    std::chrono::steady_clock::time_point begin_ GUARDED_BY(mutex_);
    int count_ GUARDED_BY(mutex_){0};
};

// The text ends with a line end. Not instrumented, as all that the engine calls (endpoints.cpp).
[[gnu::no_sanitize_thread]] void tell(void* /*user*/, dds_log_data_t const* data) {
    static Limit limit;
    if (!limit.admits()) {
        return;
    }
    std::string_view text(data->message, data->size);
    text = text.substr(0, text.find('\n'));
    if ((data->priority & (DDS_LC_FATAL | DDS_LC_ERROR)) != 0) {
        ara::log::LogError() << "DDS: " << text;
    } else {
        ara::log::LogWarn() << "DDS: " << text;
    }
}

}  // namespace

void log_what_the_engine_tells() {
    dds_set_log_sink(tell, nullptr);
}

}  // namespace ara::com::dds
