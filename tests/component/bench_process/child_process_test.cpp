#include "bench/process/child_process.h"

#include "bench/process/scratch_directory.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace bench {
namespace {

using namespace std::chrono_literals;

std::string all_output(Child_process const& child) {
    std::string text;
    std::array<char, 256> bytes{};
    for (ssize_t count = 0; (count = ::read(child.output(), bytes.data(), bytes.size())) > 0;) {
        text.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return text;
}

TEST(Child_process_test, A_program_runs_with_its_arguments_and_its_status_is_told) {
    Child_process sut({"sh", "-c", "echo \"$1\"; exit 7", "sh", "hello world"}, {});
    EXPECT_EQ(all_output(sut), "hello world\n");
    EXPECT_EQ(sut.wait(10s), 7);
    EXPECT_EQ(sut.wait(0s), 7);
}

TEST(Child_process_test, A_program_that_is_not_there_is_told_to_the_caller) {
    try {
        Child_process const sut({"/nowhere/program"}, {});
        FAIL() << "it started";
    } catch (std::system_error const& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
    }
}

TEST(Child_process_test, The_environment_is_the_callers_with_the_given_assignments) {
    ::setenv("KEPT", "kept", 1);
    ::setenv("REPLACED", "old", 1);
    Child_process const sut({"sh", "-c", "echo $KEPT $REPLACED $ADDED"}, {"REPLACED=new", "ADDED=more"});
    EXPECT_EQ(all_output(sut), "kept new more\n");
}

TEST(Child_process_test, Its_standard_input_comes_from_the_pipe_until_that_is_closed) {
    Child_process sut({"cat"}, {});
    EXPECT_EQ(::write(sut.input(), "abc", 3), 3);
    sut.close_input();
    EXPECT_EQ(all_output(sut), "abc");
    EXPECT_EQ(sut.wait(10s), 0);
}

TEST(Child_process_test, A_signal_shows_in_the_status) {
    Child_process sut({"sleep", "1000"}, {});
    EXPECT_EQ(sut.wait(0s), std::nullopt);
    sut.signal(SIGTERM);
    EXPECT_EQ(sut.wait(10s), 128 + SIGTERM);
}

TEST(Child_process_test, A_child_sees_no_descriptor_of_another_one) {
    std::vector<std::string> const count_descriptors{"sh", "-c", "ls /proc/self/fd | wc -l"};
    std::string const alone = all_output(Child_process(count_descriptors, {}));
    Child_process const other({"cat"}, {});
    EXPECT_EQ(all_output(Child_process(count_descriptors, {})), alone);
}

TEST(Child_process_test, A_child_that_ignores_the_end_of_its_input_is_killed_with_the_object) {
    pid_t child = 0;
    {
        Child_process const sut({"sleep", "1000"}, {});
        child = sut.pid();
    }
    EXPECT_EQ(::kill(child, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(Scratch_directory_test, It_is_empty_at_first_and_goes_with_all_that_is_in_it) {
    std::filesystem::path path;
    {
        Scratch_directory const sut;
        path = sut.path();
        EXPECT_TRUE(std::filesystem::is_empty(path));
        std::filesystem::create_directories(sut.file("a/b"));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace bench
