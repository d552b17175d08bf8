#include "ara/log/log_engine.h"
#include "ara/log/logging.h"
#include "keeping_sink.h"
#include "support/log_tap.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ara::log {
namespace {

using testing::ElementsAre;

TEST(Sink_of_a_log, Gets_what_is_logged_until_it_is_removed) {
    std::vector<std::string> lines;
    auto& engine = Log_engine::instance();
    auto sink = std::make_unique<Keeping_sink>(lines);
    auto const& its = *sink;
    engine.add_sink(std::move(sink), LogLevel::kVerbose);
    LogInfo() << "one";
    engine.drain();
    EXPECT_EQ(engine.remove_sink(its).get(), &its);
    LogInfo() << "two";
    engine.drain();
    EXPECT_THAT(lines, ElementsAre("4 one"));
}

TEST(Tapped_log, Has_all_levels_of_every_logger_until_it_is_no_more) {
    std::vector<std::string> levels;
    auto& before = CreateLogger("ERR1", "Made before", LogLevel::kError);
    EXPECT_FALSE(before.context().logs(LogLevel::kWarn));
    auto* meanwhile = &before;
    {
        test_support::Log_tap const tap([&levels](Queued_message const& message) {
            levels.push_back(message.header.context->id + std::to_string(static_cast<int>(message.header.level)));
        });
        meanwhile = &CreateLogger("ERR2", "Made meanwhile", LogLevel::kError);
        before.LogVerbose() << "one";
        meanwhile->LogVerbose() << "two";
    }
    EXPECT_FALSE(before.context().logs(LogLevel::kWarn));
    EXPECT_FALSE(meanwhile->context().logs(LogLevel::kWarn));
    EXPECT_TRUE(before.context().logs(LogLevel::kError));
    EXPECT_THAT(levels, ElementsAre("ERR16", "ERR26"));
}

}  // namespace
}  // namespace ara::log
