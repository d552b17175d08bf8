#include "ara/log/text_sink.h"

#include "ara/log/argument_encoder.h"
#include "support/temporary_directory.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace ara::log {
namespace {

using test_support::Temporary_directory;

class Text_sink : public testing::Test {
 protected:
    Queued_message message(LogLevel level, std::string const& text) {
        Argument_encoder arguments;
        arguments.add_text(text);
        arguments.add_number(7);
        Queued_message result;
        result.header = {&context, 1'234'567, static_cast<std::uint16_t>(arguments.size()), arguments.count(), level};
        std::copy_n(arguments.data(), arguments.size(), result.arguments.begin());
        return result;
    }

    Log_context context{"DFLT", "Default context", LogLevel::kVerbose};
    Temporary_directory directory;
};

TEST_F(Text_sink, Writes_a_line_with_time_level_context_and_arguments_at_once) {
    auto const sut = make_file_sink(directory.path().string(), "PROG");
    ASSERT_NE(sut, nullptr);
    sut->write(message(LogLevel::kWarn, "text"));
    sut->write(message(LogLevel::kVerbose, "more"));
    EXPECT_EQ(directory.read("PROG.log"), "123.4567 warn    DFLT text 7\n123.4567 verbose DFLT more 7\n");
}

TEST_F(Text_sink, Goes_on_in_a_file_that_is_there) {
    directory.write("PROG.log", "before\n");
    make_file_sink(directory.path().string(), "PROG")->write(message(LogLevel::kInfo, "text"));
    EXPECT_EQ(directory.read("PROG.log"), "before\n123.4567 info    DFLT text 7\n");
}

TEST_F(Text_sink, Begins_a_file_anew_that_has_grown_to_16_MiB_and_keeps_the_old_one) {
    directory.write("PROG.log", std::string(16 * 1024 * 1024 - 1, 'x'));
    directory.write("PROG.log.1", "the one before");
    auto const sut = make_file_sink(directory.path().string(), "PROG");
    sut->write(message(LogLevel::kFatal, "last of the old"));
    sut->write(message(LogLevel::kError, "first of the new"));
    EXPECT_THAT(directory.read("PROG.log.1"), testing::EndsWith("x123.4567 fatal   DFLT last of the old 7\n"));
    EXPECT_EQ(directory.read("PROG.log"), "123.4567 error   DFLT first of the new 7\n");
}

TEST_F(Text_sink, For_fatal_messages_tells_them_on_standard_error_and_no_others) {
    auto const sut = make_fatal_sink("PROG");
    testing::internal::CaptureStderr();
    sut->write(message(LogLevel::kError, "an error"));
    sut->write(message(LogLevel::kFatal, "the end"));
    sut->miss(message(LogLevel::kFatal, "what the log had no room for"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "PROG: the end 7\nPROG: what the log had no room for 7\n");
    EXPECT_FALSE(sut->has_room());
}

TEST_F(Text_sink, For_fatal_messages_waits_for_nobody_who_does_not_read) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_NONBLOCK), 0);
    std::string const filling(4096, 'x');
    while (::write(pipe[1], filling.data(), filling.size()) > 0) {
    }
    ASSERT_EQ(::fcntl(pipe[1], F_SETFL, 0), 0);  // from here on a write waits
    int const standard_error = ::dup(STDERR_FILENO);
    ::dup2(pipe[1], STDERR_FILENO);
    make_fatal_sink("PROG")->write(message(LogLevel::kFatal, "the end"));
    ::dup2(standard_error, STDERR_FILENO);
    for (int const descriptor : {pipe[0], pipe[1], standard_error}) {
        ::close(descriptor);
    }
}

TEST_F(Text_sink, Is_none_where_no_file_can_be_made) {
    EXPECT_EQ(make_file_sink(directory.file("missing"), "PROG"), nullptr);
}

TEST_F(Text_sink, Writes_to_standard_error) {
    std::ostringstream shown;
    auto* const before = std::cerr.rdbuf(shown.rdbuf());
    make_console_sink()->write(message(LogLevel::kDebug, "text"));
    std::cerr.rdbuf(before);
    EXPECT_EQ(shown.str(), "123.4567 debug   DFLT text 7\n");
}

}  // namespace
}  // namespace ara::log
