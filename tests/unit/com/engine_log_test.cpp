#include "ara/com/dds/entities/participant.h"
#include "support/eventually.h"
#include "support/log_capture.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

#include <dds/ddsrt/log.h>
#include <gmock/gmock.h>

namespace com_unit {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::Contains;

class Engine_log : public testing::Test {
 protected:
    static void say(std::uint32_t category) {
        dds_log(category, __FILE__, __LINE__, __func__, "%s\nand more\n", category == DDS_LC_ERROR ? "bad" : "odd");
    }

    std::size_t told() { return log_.messages().size(); }

    /// Whether it is told.
    bool is_told_now() {
        auto const before = told();
        begin_ = Clock::now();
        say(DDS_LC_WARNING);
        return told() != before;
    }

    using Clock = std::chrono::steady_clock;
    ara::com::dds::Participant const participant_;
    Clock::time_point begin_;  // of the last call
    test_support::Log_capture log_;
};

TEST_F(Engine_log, Has_the_first_line_of_what_the_engine_tells_ten_times_a_second) {
    ASSERT_TRUE(test_support::eventually([this] { return !is_told_now(); }));
    ASSERT_TRUE(test_support::eventually([this] { return is_told_now(); })) << "the first of a second";
    log_.clear();
    for (int number = 0; number < 30; ++number) {
        say(number % 2 == 0 ? DDS_LC_WARNING : DDS_LC_ERROR);
    }
    auto const seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begin_).count();
    EXPECT_GE(told(), 9U);
    EXPECT_LE(told(), 9U + 10U * static_cast<std::size_t>(seconds));
    EXPECT_THAT(log_.messages(), Contains(logged(LogLevel::kWarn, "DDS: ", "odd")));
    EXPECT_THAT(log_.messages(), Contains(logged(LogLevel::kError, "DDS: ", "bad")));
}

}  // namespace
}  // namespace com_unit
