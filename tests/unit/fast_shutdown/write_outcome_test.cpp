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
using test_support::Log_message;
using test_support::logged;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

class Write_outcome : public testing::Test {
 protected:
    Fast_shutdown_handler const sut{""};
    Log_capture log;
};

TEST_F(Write_outcome, Is_told_as_sent_as_failed_or_with_what_went_out_and_what_did_not) {
    auto const cut = [](char const* out, char const* rest) {
        return logged(LogLevel::kWarn, "Only part of command written: ", out, "Try to write remaining command: ", rest);
    };
    auto const sent = [](char const* command) { return logged(LogLevel::kVerbose, "Command send: ", command); };
    struct Row {
        long written;
        char const* command;
        Log_message told;
    };
    for (auto const& [written, command, told] :
         {Row{10, "terminate\n", sent("terminate\n")}, Row{0, "", sent("")},
          Row{-1, "terminate\n",
              logged(LogLevel::kError, "Failed to write command: ", "terminate\n", " Error: ", "Broken pipe")},
          // The rest begins with the last byte that went out, and lacks the command's final one.
          Row{1, "terminate\n", cut("t", "terminate")}, Row{5, "terminate\n", cut("termi", "inate")},
          Row{9, "terminate\n", cut("terminate", "e")}}) {
        long count = written;
        errno = EPIPE;
        log.clear();

        sut.write_info(count, command);

        EXPECT_THAT(log.messages(), ElementsAre(told));
        EXPECT_EQ(count, written) << "it stays as it is";
    }
}

TEST_F(Write_outcome, A_write_that_took_nothing_throws_to_the_caller_and_logs_nothing) {
    EXPECT_THAT(
        [this] {
            long nothing = 0;
            sut.write_info(nothing, "terminate\n");
        },
        ThrowsMessage<std::out_of_range>(HasSubstr("basic_string::substr")));

    EXPECT_THAT(log.messages(), IsEmpty());
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
