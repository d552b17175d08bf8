#include "bench/json_lines/control_loop.h"

#include "bench/json_lines/clock.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

namespace bench {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

struct Pipe {
    Pipe() { EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0); }
    ~Pipe() {
        close_writer();
        ::close(ends[0]);
    }
    Pipe(Pipe const&) = delete;
    Pipe& operator=(Pipe const&) = delete;

    void write(std::string const& text) const {
        EXPECT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void close_writer() {
        if (ends[1] >= 0) {
            ::close(ends[1]);
            ends[1] = -1;
        }
    }
    std::array<int, 2> ends{};
};

class Control_loop_test : public testing::Test {
 protected:
    Control_loop_test() {
        commands.add("note", [this](Arguments& arguments) {
            notes.push_back(arguments.text("text"));
            return json();
        });
    }

    std::vector<json> sent() {
        output.close_writer();
        std::string text;
        std::array<char, 65536> bytes{};
        for (ssize_t count = 0; (count = ::read(output.ends[0], bytes.data(), bytes.size())) > 0;) {
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        std::vector<json> lines;
        for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1) {
            lines.push_back(json::parse(text.substr(start, text.find('\n', start) - start)));
        }
        return lines;
    }

    Pipe input;
    Pipe output;
    std::vector<std::string> notes;
    Command_table commands;
};

TEST_F(Control_loop_test, Commands_are_answered_in_order_and_the_end_of_input_ends_the_loop_with_status_0) {
    Control_loop sut(input.ends[0], output.ends[1], commands);
    input.write("{\"do\":\"note\",\"text\":\"a\",\"id\":1}\n\n  \n{\"do\":\"note\",\"text\":\"b\",\"id\":2}\nwrong\n");
    input.close_writer();
    EXPECT_EQ(sut.run(), 0);
    EXPECT_EQ(notes, (std::vector<std::string>{"a", "b"}));
    auto const lines = sent();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["id"], 1);
    EXPECT_EQ(lines[1]["id"], 2);
    EXPECT_EQ(lines[2]["ok"], false);
}

TEST_F(Control_loop_test, A_last_line_without_line_feed_is_a_command_too) {
    Control_loop sut(input.ends[0], output.ends[1], commands);
    input.write(R"({"do":"note","text":"last"})");
    input.close_writer();
    sut.run();
    EXPECT_EQ(notes, (std::vector<std::string>{"last"}));
}

TEST_F(Control_loop_test, Commands_can_come_from_a_regular_file) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::tmpfile(), &std::fclose);
    std::fputs("{\"do\":\"note\",\"text\":\"a\"}\n{\"do\":\"note\",\"text\":\"b\"}\n", file.get());
    std::fflush(file.get());
    std::rewind(file.get());
    Control_loop sut(::fileno(file.get()), output.ends[1], commands);
    EXPECT_EQ(sut.run(), 0);
    EXPECT_EQ(notes, (std::vector<std::string>{"a", "b"}));
}

TEST_F(Control_loop_test, An_event_carries_its_name_its_details_and_the_time) {
    Control_loop sut(input.ends[0], output.ends[1], commands);
    std::int64_t const before = monotonic_ns();
    sut.event("press", {{"key", "n"}});
    sut.event("old", {{"t", 5}});
    auto const lines = sent();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["event"], "press");
    EXPECT_EQ(lines[0]["key"], "n");
    EXPECT_GE(lines[0]["t"].get<std::int64_t>(), before);
    EXPECT_EQ(lines[1]["t"], 5);
}

TEST_F(Control_loop_test, Bytes_that_are_no_UTF_8_still_make_a_valid_event) {
    Control_loop sut(input.ends[0], output.ends[1], commands);
    sut.event("write", {{"text", "\xff\x01"}});
    EXPECT_EQ(sent().at(0)["event"], "write");
}

TEST_F(Control_loop_test, A_watched_descriptor_and_a_delay_call_their_actions) {
    Pipe other;
    Control_loop sut(input.ends[0], output.ends[1], commands);
    std::vector<std::string> order;
    sut.watch(other.ends[0], [&] {
        char byte = 0;
        EXPECT_EQ(::read(other.ends[0], &byte, 1), 1);
        order.emplace_back("ready");
        sut.after(2ms, [&] {
            order.emplace_back("later");
            sut.stop(7);
        });
        sut.after(0ms, [&] { order.emplace_back("soon"); });
    });
    other.write("x");
    EXPECT_EQ(sut.run(), 7);
    EXPECT_EQ(order, (std::vector<std::string>{"ready", "soon", "later"}));
}

TEST_F(Control_loop_test, A_termination_signal_ends_the_loop_with_status_0) {
    Control_loop sut(input.ends[0], output.ends[1], commands);
    sut.after(0ms, [] { ::kill(::getpid(), SIGTERM); });
    EXPECT_EQ(sut.run(), 0);
}

TEST_F(Control_loop_test, Events_that_waited_for_a_slow_reader_all_arrive) {
    Control_loop sut(input.ends[0], output.ends[1], commands);
    std::string const text(1000, 'x');
    for (int number = 0; number < 100; ++number) {
        sut.event("many", {{"text", text}, {"number", number}});
    }
    std::string received;
    std::array<char, 4096> bytes{};
    ::fcntl(output.ends[0], F_SETFL, O_NONBLOCK);
    std::function<void()> const read_on = [&] {
        for (ssize_t count = 0; (count = ::read(output.ends[0], bytes.data(), bytes.size())) > 0;) {
            received.append(bytes.data(), static_cast<std::size_t>(count));
        }
        if (received.find("\"number\":99") != std::string::npos) {
            sut.stop(0);
        } else {
            sut.after(1ms, read_on);
        }
    };
    sut.after(0ms, read_on);
    EXPECT_EQ(sut.run(), 0);
    EXPECT_EQ(std::count(received.begin(), received.end(), '\n'), 100);
}

}  // namespace
}  // namespace bench
