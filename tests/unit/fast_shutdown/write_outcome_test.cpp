#include "statemanager/fast_shutdown/fast_shutdown_handler.h"
#include "support/file_size_limit.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <cerrno>
#include <stdexcept>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::fast_shutdown {
namespace {

using ara::log::LogLevel;
using test_support::Log_capture;
using test_support::logged;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

class Write_outcome : public testing::Test {
 protected:
    void report(long written, std::string const& command) const { sut.write_info(written, command); }

    Fast_shutdown_handler const sut{""};
    Log_capture log;
};

TEST_F(Write_outcome, A_whole_command_is_told_as_sent) {
    report(10, "terminate\n");

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "Command send: ", "terminate\n")));
}

TEST_F(Write_outcome, A_failure_is_told_with_its_reason) {
    errno = EPIPE;
    report(-1, "terminate\n");

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kError, "Failed to write command: ", "terminate\n",
                                                   " Error: ", "Broken pipe")));
}

TEST_F(Write_outcome, A_short_write_shows_what_went_out_and_the_rest_from_its_last_byte_on_without_the_final_one) {
    report(5, "terminate\n");

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kWarn, "Only part of command written: ", "termi",
                                                   "Try to write remaining command: ", "inate")));
}

TEST_F(Write_outcome, A_write_of_one_byte_shows_the_command_without_its_final_byte) {
    report(1, "terminate\n");

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kWarn, "Only part of command written: ", "t",
                                                   "Try to write remaining command: ", "terminate")));
}

TEST_F(Write_outcome, A_write_of_all_but_one_byte_shows_one_byte) {
    report(9, "terminate\n");

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kWarn, "Only part of command written: ", "terminate",
                                                   "Try to write remaining command: ", "e")));
}

TEST_F(Write_outcome, A_write_that_took_nothing_throws_to_the_caller_and_logs_nothing) {
    EXPECT_THAT([this] { report(0, "terminate\n"); },
                ThrowsMessage<std::out_of_range>(HasSubstr("basic_string::substr")));

    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Write_outcome, An_empty_command_is_sent_whole) {
    report(0, "");

    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kVerbose, "Command send: ", "")));
}

TEST_F(Write_outcome, The_byte_count_stays_as_it_is) {
    long written = 5;

    sut.write_info(written, "terminate\n");

    EXPECT_EQ(written, 5);
}

TEST_F(Write_outcome, A_command_that_the_channel_cuts_is_not_completed) {
    test_support::Temporary_directory const directory;
    Fast_shutdown_handler const handler(directory.write("poweroff", ""));
    {
        test_support::File_size_limit const limit(5);
        handler.shutdown_pm();
    }

    EXPECT_EQ(directory.read("poweroff"), "termi");
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Shutting down PM daemon"),
                                            logged(LogLevel::kWarn, "Only part of command written: ", "termi",
                                                   "Try to write remaining command: ", "inate")));
}

}  // namespace
}  // namespace ximo::ap::statemanager::fast_shutdown
