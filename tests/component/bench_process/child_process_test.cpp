#include "bench/process/child_process.h"

#include "base/temporary_directory.h"
#include "bench/process/unasked_end.h"
#include "world/fail_by_unasked_ends.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <system_error>
#include <thread>
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

TEST(Child_process_test, A_child_sees_no_descriptor_of_another_one) {
    std::vector<std::string> const count_descriptors{"sh", "-c", "ls /proc/self/fd | wc -l"};
    std::string const alone = all_output(Child_process(count_descriptors, {}));
    Child_process const other({"cat"}, {});
    EXPECT_EQ(all_output(Child_process(count_descriptors, {})), alone);
}

std::vector<std::string>& heard() {
    static auto& told = *new std::vector<std::string>;
    return told;
}

struct Kept_child {
    char const* name;
    char const* script;
    std::function<void(Child_process&)> owner;  ///< what the owner does before it lets the child go
    char const* heard;                          ///< what is heard of its end; empty for nothing
};

void PrintTo(Kept_child const& child, std::ostream* out) {
    *out << child.name;
}

void leave_alone(Child_process& /*child*/) {}

class Unasked_end : public testing::TestWithParam<Kept_child> {
 protected:
    Unasked_end() {
        heard().clear();
        hear_unasked_ends([](std::string const& what) { heard().push_back(what); });
    }
    ~Unasked_end() override { fail_by_unasked_ends(); }
};

TEST_P(Unasked_end, Is_heard_of) {
    pid_t child = 0;
    {
        Child_process sut({"sh", "-c", GetParam().script}, {});
        child = sut.pid();
        GetParam().owner(sut);
    }
    EXPECT_EQ(::kill(child, 0), -1);
    EXPECT_EQ(errno, ESRCH);
    std::string const wanted = GetParam().heard;
    EXPECT_EQ(heard(), wanted.empty() ? std::vector<std::string>() : std::vector<std::string>{"sh " + wanted});
}

INSTANTIATE_TEST_SUITE_P(
    Child_process_test, Unasked_end,
    testing::Values(Kept_child{"Well_with_its_input", "read line; exit 0", leave_alone, ""},
                    Kept_child{"Badly_with_its_input", "read line; exit 3", leave_alone,
                               "ended with status 3, for which nobody had asked"},
                    Kept_child{"By_a_signal_of_its_own", "kill -ABRT $$", leave_alone,
                               "ended with status 134, for which nobody had asked"},
                    Kept_child{"By_a_signal_that_was_sent", "exec sleep 1000",
                               [](auto& child) { child.signal(SIGKILL); }, ""},
                    Kept_child{"By_another_signal_than_was_sent", "trap 'kill -ABRT $$' TERM; echo; read line; wait",
                               [](auto& child) {
                                   char byte = 0;
                                   ASSERT_EQ(::read(child.output(), &byte, 1), 1);
                                   child.signal(SIGTERM);
                               },
                               "ended with status 134, for which nobody had asked"},
                    Kept_child{"As_is_expected", "exit 3", [](auto& child) { child.expect(3); }, ""},
                    Kept_child{"As_the_owner_judges", "exit 3", [](auto& child) { EXPECT_EQ(child.wait(10s), 3); }, ""},
                    Kept_child{"As_somebody_saw", "exit 3",
                               [](auto& child) {
                                   while (!child.status()) {
                                       std::this_thread::sleep_for(1ms);
                                   }
                               },
                               "ended with status 3, for which nobody had asked"},
                    Kept_child{"Not_at_all", "exec sleep 1000", leave_alone, "did not end when it was told to"}),
    [](auto const& example) { return example.param.name; });

}  // namespace
}  // namespace bench
