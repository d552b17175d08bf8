#include "state_fixture.h"
#include "statemanager/states/shutting_down_state.h"

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::states {
namespace {

using ara::log::LogLevel;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Shutting_down : public State_test {
 protected:
    ~Shutting_down() override {
        if (reader >= 0) {
            ::close(reader);
        }
    }

    // The power-off service's end of the channel, and the daemon's.
    std::shared_ptr<fast_shutdown::Fast_shutdown_handler> open_channel() {
        auto const path = files.file("poweroff");
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
        return std::make_shared<fast_shutdown::Fast_shutdown_handler>(path);
    }

    std::string received() const {
        std::array<char, 256> buffer{};
        auto const count = ::read(reader, buffer.data(), buffer.size());
        return {buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

    int reader{-1};
};

TEST_F(Shutting_down, Goes_through_execution_management_when_power_off_was_not_requested_while_suspended) {
    Shutting_down_state sut(services, shared_memory, em, true, 60, open_channel());
    log.clear();
    EXPECT_TRUE(sut.entering_state());
    EXPECT_THAT(log.messages(), ElementsAre(logged(LogLevel::kInfo, "Entering shutdown state"),
                                            logged(LogLevel::kInfo, "Normal shutdown executed")));
    EXPECT_EQ(written(), "shuttingdown");
    EXPECT_THAT(em->actions, ElementsAre("request_shutdown"));
    EXPECT_FALSE(sut.is_forced_shutdown());
    EXPECT_EQ(received(), "");
}

TEST_F(Shutting_down, Powers_off_with_its_time_budget_when_power_off_was_requested_while_suspended) {
    Shutting_down_state sut(services, shared_memory, em, true, 60, open_channel());
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_TRUE(sut.entering_state());
    EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kInfo, "Fast shutdown executed")));
    EXPECT_TRUE(sut.is_forced_shutdown());
    EXPECT_EQ(received(), "terminate\npoweroff 60000\n");
    EXPECT_THAT(em->actions, IsEmpty());
    EXPECT_EQ(written(), "shuttingdown");
}

TEST_F(Shutting_down, Computes_the_time_budget_in_64_bits) {
    Shutting_down_state sut(services, shared_memory, em, true, 4294967295U, open_channel());
    State_interface::set_forced_shutdown_flag(true);
    sut.entering_state();
    EXPECT_EQ(received(), "terminate\npoweroff 4294967295000\n");
}

TEST_F(Shutting_down, Takes_the_normal_way_when_the_fast_one_is_closed) {
    auto const closed = std::make_shared<fast_shutdown::Fast_shutdown_handler>(files.file("nobody"));
    Shutting_down_state sut(services, shared_memory, em, true, 60, closed);
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_TRUE(sut.entering_state());
    EXPECT_THAT(log.messages(), Contains(logged(LogLevel::kInfo, "Normal shutdown executed")));
    EXPECT_FALSE(sut.is_forced_shutdown());
    EXPECT_THAT(em->actions, ElementsAre("request_shutdown"));
}

class Shutting_down_that_fails : public Shutting_down_state {
 public:
    using Shutting_down_state::Shutting_down_state;
    bool normal_shutdown() override { return normal_result; }
    bool forced_shutdown() override { return !normal_result; }

    bool normal_result{false};
};

TEST_F(Shutting_down, Has_the_result_of_the_way_that_it_takes) {
    Shutting_down_that_fails sut(services, shared_memory, em, true, 60, open_channel());
    EXPECT_FALSE(sut.entering_state());
    sut.normal_result = true;
    EXPECT_TRUE(sut.entering_state());
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_FALSE(sut.entering_state());
    sut.normal_result = false;
    EXPECT_TRUE(sut.entering_state());
}

TEST_F(Shutting_down, Needs_no_collaborator) {
    Shutting_down_state sut(nullptr, nullptr, nullptr, true, 60, nullptr);
    State_interface::set_forced_shutdown_flag(true);
    EXPECT_TRUE(sut.entering_state());
    EXPECT_FALSE(sut.is_forced_shutdown());
}

}  // namespace
}  // namespace ximo::ap::statemanager::states
