#include "tools/check_config/verdict.h"

#include "ara/com/instance.h"
#include "ara/log/argument_decoder.h"
#include "ara/log/log_engine.h"
#include "base/mutex.h"
#include "base/signals.h"
#include "statemanager/config/require_sendable.h"
#include "statemanager/config/state_manager_json_parser.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace statectl::check_config {

namespace {

using ara::log::Log_context;
using ara::log::Log_engine;
using ara::log::LogLevel;
using ara::log::Queued_message;

/// Keeps the last message of the log at level debug or above: of a refusal it is the reason.
class Last_message : public ara::log::Log_sink {
 public:
    explicit Last_message(std::string& text) : text_(text) {}
    ~Last_message() override {
        for (auto* const context : contexts_) {
            context->threshold = context->own_threshold;
        }
    }

    void add_context(Log_context& context) override {
        context.threshold = static_cast<std::int8_t>(LogLevel::kDebug);
        contexts_.push_back(&context);
    }
    void write(Queued_message const& message) override {
        text_ = ara::log::to_text(ara::log::decode_arguments(message.arguments.data(), message.header.size));
    }
    bool is_awaited() const override { return true; }

 private:
    std::string& text_;
    std::vector<Log_context*> contexts_;
};

/// Empties the log's queue, into which a configuration with many mistakes puts more than it holds.
class Drainer {
 public:
    Drainer() : thread_(start()) {}
    ~Drainer() {
        is_done_ = true;
        thread_.join();
    }
    Drainer(Drainer const&) = delete;
    Drainer& operator=(Drainer const&) = delete;

 private:
    std::thread start() {
        base::All_signals_blocked const blocked;
        return std::thread([this] {
            while (!is_done_) {
                Log_engine::instance().drain();
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }

    std::atomic<bool> is_done_{false};
    std::thread thread_;
};

template <class Action>
std::string last_message_of(Action const& action) {
    auto& engine = Log_engine::instance();
    std::string text;
    auto sink = std::make_unique<Last_message>(text);
    auto const* const own = sink.get();
    engine.drain();
    engine.add_sink(std::move(sink), LogLevel::kDebug);
    {
        Drainer const drainer;
        action();
    }
    engine.drain();
    engine.remove_sink(*own);
    return text;
}

void require_names(std::vector<std::string> const& instances) {
    for (auto const& instance : instances) {
        [[maybe_unused]] ara::com::InstanceIdentifier const name(instance);
    }
}

// In the daemon's order: the services of applications that main makes, those that the service handler makes, the rest.
void require_services(Config const& config) {
    require_names(config.get_apps_comalive());
    require_names(config.get_apps_cwu());
    require_names(config.get_apps_ecualive());
    if (config.is_nm_usage_allowed()) {
        ximo::ap::statemanager::config::require_sendable(config);
    }
}

}  // namespace

Verdict ask_daemon(std::string const& path) {
    Verdict verdict;
    using ximo::ap::statemanager::config::State_manager_json_parser;
    verdict.reason =
        last_message_of([&] { verdict.is_parsed = State_manager_json_parser::parse(path, *verdict.config); });
    if (!verdict.is_parsed) {
        return verdict;
    }
    verdict.reason.clear();
    try {
        require_services(*verdict.config);
        verdict.is_taken = true;
    } catch (std::exception const& error) {
        verdict.reason = std::string("AP_StateManger is aborted: ") + error.what();
    }
    return verdict;
}

}  // namespace statectl::check_config
