#include "bench/json_lines/output_queue.h"

#include <array>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

namespace bench {
namespace {

class Output_queue_test : public testing::Test {
 protected:
    Output_queue_test() {
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    ~Output_queue_test() override {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    // All that is in the pipe now.
    std::string received() {
        std::string result;
        std::array<char, 4096> bytes{};
        for (ssize_t count = 0; (count = ::read(ends[0], bytes.data(), bytes.size())) > 0;) {
            result.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return result;
    }

    std::array<int, 2> ends{};
};

TEST_F(Output_queue_test, A_line_is_written_at_once_with_a_line_feed) {
    Output_queue sut(ends[1]);
    sut.send("hello");
    EXPECT_EQ(received(), "hello\n");
    EXPECT_FALSE(sut.waiting());
}

TEST_F(Output_queue_test, What_a_full_pipe_does_not_take_waits_without_blocking_and_arrives_in_order) {
    Output_queue sut(ends[1]);
    std::string expected;
    std::string const line(1000, 'x');
    for (int number = 0; number < 200; ++number) {  // 200 kB; the pipe holds 64 KiB
        std::string const numbered = std::to_string(number) + line;
        sut.send(numbered);
        expected += numbered + "\n";
    }
    EXPECT_TRUE(sut.waiting());
    std::string all = received();
    while (sut.waiting()) {
        sut.flush();
        all += received();
    }
    EXPECT_EQ(all, expected);
    EXPECT_EQ(sut.dropped(), 0U);
}

TEST_F(Output_queue_test, Lines_beyond_the_bound_are_dropped_and_counted) {
    Output_queue sut(ends[1]);
    std::string const line(1024UL * 1024, 'x');
    for (int number = 0; number < 12; ++number) {
        sut.send(line);
    }
    EXPECT_EQ(sut.dropped(), 4U);  // 8 MiB wait at most, and a megabyte less 64 KiB of the first went nowhere yet
}

TEST_F(Output_queue_test, A_reader_that_is_gone_drops_everything) {
    ::signal(SIGPIPE, SIG_IGN);
    Output_queue sut(ends[1]);
    ::close(ends[0]);
    sut.send("hello");
    EXPECT_FALSE(sut.waiting());
    ends[0] = ::dup(ends[1]);
}

TEST_F(Output_queue_test, Draining_ends_with_its_time_when_nobody_reads) {
    Output_queue sut(ends[1]);
    sut.send(std::string(100'000, 'x'));
    auto const start = std::chrono::steady_clock::now();
    sut.drain(std::chrono::milliseconds(50));
    EXPECT_TRUE(sut.waiting());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace bench
