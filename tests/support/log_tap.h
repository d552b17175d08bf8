#ifndef TESTS_SUPPORT_LOG_TAP_H
#define TESTS_SUPPORT_LOG_TAP_H

#include "ara/log/log_engine.h"

#include <functional>

namespace test_support {

/// Calls a function with each message that is logged while it lives, at whatever level. Who logs waits while the log's
/// queue is full, so that nothing is dropped; somebody has to drain it.
class Log_tap {
 public:
    using Handler = std::function<void(ara::log::Queued_message const& message)>;

    explicit Log_tap(Handler handler);
    ~Log_tap();
    Log_tap(Log_tap const&) = delete;
    Log_tap& operator=(Log_tap const&) = delete;

 private:
    ara::log::Log_sink const* sink_;  // the log's
};

}  // namespace test_support

#endif
