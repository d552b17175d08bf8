#include "statemanager/fast_shutdown/fast_shutdown_handler.h"

#include "power_off_channel.h"
#include "support/log_capture.h"
#include "support/open_descriptors.h"
#include "support/virtual_slot.h"

#include <csignal>
#include <memory>

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::fast_shutdown {
namespace {

using ara::log::LogLevel;
using std::chrono::milliseconds;
using test_support::descriptors_on;
using test_support::Log_capture;
using test_support::logged;
using test_support::Power_off_channel;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Fast_shutdown : public testing::Test {
 protected:
    void SetUp() override {
        channel.listen();
        sut = std::make_unique<Fast_shutdown_handler>(channel.path());
    }

    Power_off_channel channel;
    Log_capture log;
    std::unique_ptr<Fast_shutdown_handler> sut;
};

TEST_F(Fast_shutdown, Is_possible_when_the_service_listens) {
    EXPECT_TRUE(sut->is_possible());
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Fast_shutdown, The_channel_is_write_only_does_not_block_and_is_not_inherited) {
    channel.stop_listening();

    ASSERT_THAT(descriptors_on(channel.path()), SizeIs(1));
    int const descriptor = descriptors_on(channel.path()).front();
    EXPECT_EQ(::fcntl(descriptor, F_GETFL) & (O_ACCMODE | O_NONBLOCK), O_WRONLY | O_NONBLOCK);
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
}

// A daemon may be started with its standard input closed.
TEST_F(Fast_shutdown, Descriptor_0_is_as_good_as_any_other) {
    int const standard_input = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(STDIN_FILENO);
    sut = std::make_unique<Fast_shutdown_handler>(channel.path());
    ASSERT_THAT(descriptors_on(channel.path()), Contains(STDIN_FILENO));

    sut->process_lookup();

    EXPECT_TRUE(sut->is_possible());
    EXPECT_EQ(channel.take(), "lookup vyn_per_daemon\n");
    sut.reset();
    ::dup2(standard_input, STDIN_FILENO);
    ::close(standard_input);
}

TEST_F(Fast_shutdown, Each_command_is_told_and_written) {
    struct Row {
        void (*act)(Fast_shutdown_handler& handler);
        char const* told;
        char const* written;
    };
    for (auto const& [act, told, written] :
         {Row{[](auto& handler) { handler.process_lookup(); }, "Lookup for PM daemon PID", "lookup vyn_per_daemon\n"},
          Row{[](auto& handler) { handler.shutdown_pm(); }, "Shutting down PM daemon", "terminate\n"},
          Row{[](auto& handler) { handler.call_exit_app(milliseconds(120'000)); }, "Starting ExitApp",
              "poweroff 120000\n"},
          Row{[](auto& handler) { handler.call_exit_app(milliseconds(0)); }, "Starting ExitApp", "poweroff 0\n"},
          Row{[](auto& handler) { handler.call_exit_app(milliseconds(-15)); }, "Starting ExitApp", "poweroff -15\n"},
          Row{[](auto& handler) { handler.call_exit_app(milliseconds::max()); }, "Starting ExitApp",
              "poweroff 9223372036854775807\n"}}) {
        log.clear();
        act(*sut);
        EXPECT_EQ(channel.take(), written);
        EXPECT_THAT(log.messages(),
                    ElementsAre(logged(LogLevel::kInfo, told), logged(LogLevel::kVerbose, "Command send: ", written)));
    }
}

TEST_F(Fast_shutdown, Starting_it_terminates_first_and_then_powers_off) {
    sut->start_fast_shutdown(milliseconds(2500));

    EXPECT_EQ(channel.take(), "terminate\npoweroff 2500\n");
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Shutting down PM daemon"),
                                            logged(LogLevel::kVerbose, "Command send: ", "terminate\n"),
                                            logged(LogLevel::kInfo, "Starting ExitApp"),
                                            logged(LogLevel::kVerbose, "Command send: ", "poweroff 2500\n")));
}

TEST_F(Fast_shutdown, A_service_that_went_away_is_a_failed_write) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    channel.stop_listening();

    sut->shutdown_pm();

    EXPECT_TRUE(sut->is_possible());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Shutting down PM daemon"),
                                            logged(LogLevel::kError, "Failed to write command: ", "terminate\n",
                                                   " Error: ", "Broken pipe")));
}

TEST_F(Fast_shutdown, A_full_channel_is_a_failed_write_and_nothing_waits) {
    int const filler = ::open(channel.path().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    std::string const block(4096, 'x');
    while (::write(filler, block.data(), block.size()) > 0) {
    }
    ::close(filler);

    sut->start_fast_shutdown(milliseconds(1));

    EXPECT_THAT(log.at_least(LogLevel::kError),
                ElementsAre(logged(LogLevel::kError, "Failed to write command: ", "terminate\n",
                                   " Error: ", "Resource temporarily unavailable"),
                            logged(LogLevel::kError, "Failed to write command: ", "poweroff 1\n",
                                   " Error: ", "Resource temporarily unavailable")));
}

TEST_F(Fast_shutdown, The_end_closes_the_channel_silently) {
    sut.reset();

    EXPECT_THAT(log.messages(), IsEmpty());
    EXPECT_THAT(descriptors_on(channel.path()), SizeIs(1));  // the listener's own
}

TEST_F(Fast_shutdown, A_close_that_fails_is_told_with_the_usual_path_whatever_was_opened) {
    channel.stop_listening();
    ASSERT_THAT(descriptors_on(channel.path()), SizeIs(1));
    ::close(descriptors_on(channel.path()).front());

    sut.reset();

    EXPECT_THAT(log.messages(),
                ElementsAre(logged(LogLevel::kError, "Failed to close file: PATH: /run/adaptive/poweroff",
                                   " Error: ", "Bad file descriptor")));
}

TEST(Fast_shutdown_without_a_channel, A_path_that_cannot_be_opened_is_told_and_not_made) {
    test_support::Temporary_directory const directory;
    Power_off_channel const nobody_listens;
    for (auto const& [path, reason] : {std::pair(directory.file("poweroff"), "No such file or directory"),
                                       std::pair(nobody_listens.path(), "No such device or address")}) {
        Log_capture log;

        Fast_shutdown_handler const sut(path);

        EXPECT_FALSE(sut.is_possible());
        EXPECT_THAT(log.messages(),
                    ElementsAre(logged(LogLevel::kError, "Failed to open file:", path, " Error: ", reason)));
    }
    EXPECT_FALSE(std::filesystem::exists(directory.file("poweroff")));
}

TEST(Fast_shutdown_without_a_channel, Starting_it_does_and_logs_nothing) {
    Power_off_channel channel;
    Fast_shutdown_handler const sut(channel.path());
    channel.listen();
    Log_capture log;

    sut.start_fast_shutdown(milliseconds(2500));

    EXPECT_EQ(channel.take(), "");
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST(Fast_shutdown_without_a_channel, Each_single_command_is_an_error_and_the_end_is_silent) {
    auto sut = std::make_unique<Fast_shutdown_handler>("");
    Log_capture log;

    sut->process_lookup();
    sut->shutdown_pm();
    sut->call_exit_app(milliseconds(1));
    sut->write_command("anything");
    sut.reset();

    auto const invalid = logged(LogLevel::kError, "File descriptor of PowerOFF not valid");
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Lookup for PM daemon PID"), invalid,
                                            logged(LogLevel::kInfo, "Shutting down PM daemon"), invalid,
                                            logged(LogLevel::kInfo, "Starting ExitApp"), invalid, invalid));
}

TEST(Fast_shutdown_handler_interface, The_operations_stand_in_the_order_of_the_interface) {
    EXPECT_EQ(test_support::virtual_slot(&Fast_shutdown_handler::process_lookup), 1U);
    EXPECT_EQ(test_support::virtual_slot(&Fast_shutdown_handler::start_fast_shutdown), 2U);
    EXPECT_EQ(test_support::virtual_slot(&Fast_shutdown_handler::is_possible), 3U);
}

}  // namespace
}  // namespace ximo::ap::statemanager::fast_shutdown
