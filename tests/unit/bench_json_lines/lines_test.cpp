#include "bench/json_lines/control_loop.h"
#include "bench/json_lines/line_splitter.h"
#include "bench/json_lines/output_queue.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

namespace bench {
namespace {

using namespace std::chrono_literals;

TEST(Line_splitter_test, Gives_lines_one_by_one_and_the_rest_at_the_end) {
    Line_splitter sut;
    sut.add("a\n\nb\nre");
    sut.add("st");
    EXPECT_EQ(sut.next(), "a");
    EXPECT_EQ(sut.next(), "");
    EXPECT_EQ(sut.next(), "b");
    EXPECT_EQ(sut.next(), std::nullopt);
    EXPECT_EQ(sut.rest(), "rest");
    EXPECT_EQ(sut.rest(), std::nullopt);
}

TEST(Line_splitter_test, Gives_a_line_that_is_too_long_in_pieces) {
    Line_splitter sut;
    std::string const longest(Line_splitter::k_longest_line, 'x');
    sut.add(longest + "yz\n" + longest + "\n");
    EXPECT_EQ(sut.next(), longest);
    EXPECT_EQ(sut.next(), "yz");
    EXPECT_EQ(sut.next(), longest);
}

/// A pipe whose reader does not wait.
class Output : public testing::Test {
 protected:
    Output() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0); }
    ~Output() override {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    // All that has arrived by now.
    std::string received() {
        std::string result;
        std::array<char, 4096> bytes{};
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
        for (ssize_t count = 0; (count = ::read(ends[0], bytes.data(), bytes.size())) > 0;) {
            result.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return result;
    }

    std::array<int, 2> ends{};
};

TEST_F(Output, Drops_and_counts_lines_beyond_its_bound) {
    Output_queue sut(ends[1]);
    std::string const line(1024UL * 1024, 'x');
    for (int number = 0; number < 12; ++number) {
        sut.send(line);
    }
    EXPECT_EQ(sut.dropped(), 4U);  // 8 MiB wait at most, and a megabyte less 64 KiB of the first went nowhere yet
}

TEST_F(Output, Goes_nowhere_when_its_reader_has_gone) {
    ::signal(SIGPIPE, SIG_IGN);
    Output_queue sut(ends[1]);
    ::close(ends[0]);
    sut.send("hello");
    EXPECT_FALSE(sut.waiting());
    ends[0] = ::dup(ends[1]);
}

TEST_F(Output, Is_drained_no_longer_than_told_when_nobody_reads) {
    Output_queue sut(ends[1]);
    sut.send(std::string(100'000, 'x'));
    sut.drain(50ms);
    EXPECT_TRUE(sut.waiting());
}

TEST_F(Output, Is_valid_JSON_also_with_bytes_that_are_no_UTF_8) {
    Command_table const commands;
    Control_loop sut(ends[0], ends[1], commands);
    sut.event("write", {{"text", "\xff\x01"}});
    EXPECT_EQ(nlohmann::json::parse(received())["event"], "write");
}

TEST_F(Output, Reaches_a_slow_reader_as_a_whole) {
    Command_table const commands;
    std::array<int, 2> input{};
    ASSERT_EQ(::pipe2(input.data(), O_CLOEXEC), 0);
    Control_loop sut(input[0], ends[1], commands);
    for (int number = 0; number < 100; ++number) {
        sut.event("many", {{"text", std::string(1000, 'x')}, {"number", number}});
    }
    std::string text;
    std::function<void()> const read_on = [&] {
        text += received();
        if (text.find("\"number\":99") != std::string::npos) {
            sut.stop(0);
        } else {
            sut.after(1ms, read_on);
        }
    };
    sut.after(0ms, read_on);
    EXPECT_EQ(sut.run(), 0);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 100);
    ::close(input[0]);
    ::close(input[1]);
}

}  // namespace
}  // namespace bench
