#include "ara/log/log_engine.h"
#include "ara/log/logging.h"
#include "keeping_sink.h"

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace ara::log {
namespace {

using testing::ElementsAre;

TEST(Intercepted_log, Reaches_no_sink_and_has_all_levels_of_every_logger) {
    static std::vector<std::string> lines;
    auto& engine = Log_engine::instance();
    engine.add_sink(std::make_unique<Keeping_sink>(lines), LogLevel::kVerbose);
    auto& before = CreateLogger("ERR1", "Made before", LogLevel::kError);
    EXPECT_FALSE(before.context().logs(LogLevel::kWarn));
    int intercepted = 0;
    engine.intercept([&intercepted](Queued_message const& /*message*/) { ++intercepted; });
    auto& meanwhile = CreateLogger("ERR2", "Made meanwhile", LogLevel::kError);
    before.LogVerbose() << "one";
    meanwhile.LogVerbose() << "two";
    engine.intercept({});
    EXPECT_EQ(intercepted, 2);
    EXPECT_THAT(lines, testing::IsEmpty());
    before.LogVerbose() << "three";
    meanwhile.LogError() << "four";
    engine.drain();
    EXPECT_THAT(lines, ElementsAre("2 four"));
}

}  // namespace
}  // namespace ara::log
