// A driver of the hypervisor's that lets the writer of a word wait.

#include "network_machine.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace bench::vehicle {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Ge;
using testing::HasSubstr;
using testing::Lt;
using testing::Not;

constexpr std::int64_t k_write_ms = 1000;
constexpr std::int64_t k_period_ms = 100;
constexpr std::int64_t k_service_manager_ms = 1200;  // what a cycle may wait for it

/// As long as the write, and no more than a cycle on top of it.
auto about_one_write() {
    return AllOf(Ge(k_write_ms), Lt(k_write_ms + k_period_ms + k_service_manager_ms));
}

class Slow_driver : public Network_story {
 protected:
    void slow_down(char const* file) {
        machine->hypervisor().command(
            {{"do", "fault"}, {"file", file}, {"operation", "write"}, {"delay_ms", k_write_ms}});
    }

    std::int64_t ms_from_word_to(char const* word, std::int64_t time) const {
        auto const& events = machine->events();
        auto const arrived = std::find_if(events.begin(), events.end(), [word](auto const& event) {
            return event.kind == Kind::state_word && event.text == word;
        });
        return arrived == events.end() ? -1 : (time - arrived->time) / 1'000'000;
    }

    std::vector<std::int64_t> times_of(Kind kind, char const* text) const {
        std::vector<std::int64_t> times;
        for (auto const& event : machine->events()) {
            if (event.kind == kind && event.text == text) {
                times.push_back(event.time);
            }
        }
        return times;
    }

    std::int64_t longest_pause_of_beats_ms() const {
        auto const beats = times_of(Kind::watchdog, "WATCHDOG");
        std::int64_t longest = 0;
        for (std::size_t i = 1; i < beats.size(); ++i) {
            longest = std::max(longest, (beats[i] - beats[i - 1]) / 1'000'000);
        }
        return longest;
    }

    static std::int64_t now() {
        return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
    }
};

TEST_F(Slow_driver, Holds_the_report_of_readiness_for_one_write) {
    build();
    slow_down("set_status");
    start();
    ASSERT_TRUE(sees(Kind::notification, "READY"));
    EXPECT_THAT(ms_from_word_to("startingup", times_of(Kind::notification, "READY").front()), about_one_write());
    EXPECT_TRUE(sees(Kind::state_word, "running"));
}

TEST_F(Slow_driver, Holds_the_beats_for_one_write) {
    start_and_run();
    ASSERT_TRUE(sees(Kind::watchdog, "WATCHDOG"));
    slow_down("set_status");
    machine->press("p");
    ASSERT_TRUE(sees(Kind::state_word, "prepared4sd"));
    ASSERT_TRUE(machine->await(Kind::watchdog, "WATCHDOG", machine->events().size()));
    EXPECT_THAT(longest_pause_of_beats_ms(), about_one_write());
}

TEST_F(Slow_driver, Holds_a_stop_for_one_write_which_the_signal_does_not_end) {
    start_and_run();
    slow_down("set_status");
    machine->press("p");
    ASSERT_TRUE(sees(Kind::state_word, "preparing"));
    machine->signal_daemon(SIGTERM);
    ASSERT_TRUE(ends_with(0));
    EXPECT_THAT(ms_from_word_to("preparing", now()), about_one_write());
    EXPECT_THAT(texts(Kind::log), Not(Contains(HasSubstr("I/O exception"))));
}

TEST_F(Slow_driver, Of_restart_requests_holds_no_cycle) {
    start_and_run();
    slow_down("command_request");
    auto const asked = now();
    restart(5);
    EXPECT_THAT((now() - asked) / 1'000'000, about_one_write());
    machine->press("p");
    EXPECT_TRUE(sees(Kind::state_word, "prepared4sd"));
    EXPECT_LT(longest_pause_of_beats_ms(), k_write_ms);
}

}  // namespace
}  // namespace bench::vehicle
