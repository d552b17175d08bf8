#include "support/log_tap.h"

#include <memory>
#include <utility>
#include <vector>

namespace test_support {

using ara::log::Log_context;
using ara::log::Log_engine;
using ara::log::LogLevel;

namespace {

class Tapping_sink : public ara::log::Log_sink {
 public:
    explicit Tapping_sink(Log_tap::Handler handler) : handler_(std::move(handler)) {}
    ~Tapping_sink() override {
        for (auto* const context : contexts_) {
            context->threshold = context->own_threshold;
        }
    }

    void add_context(Log_context& context) override {
        context.threshold = static_cast<std::int8_t>(LogLevel::kVerbose);
        contexts_.push_back(&context);
    }
    void write(ara::log::Queued_message const& message) override { handler_(message); }
    bool is_awaited() const override { return true; }

 private:
    Log_tap::Handler const handler_;
    std::vector<Log_context*> contexts_;
};

}  // namespace

Log_tap::Log_tap(Handler handler) {
    auto sink = std::make_unique<Tapping_sink>(std::move(handler));
    sink_ = sink.get();
    Log_engine::instance().drain();
    Log_engine::instance().add_sink(std::move(sink), LogLevel::kVerbose);
}

Log_tap::~Log_tap() {
    Log_engine::instance().drain();
    Log_engine::instance().remove_sink(*sink_);
}

}  // namespace test_support
