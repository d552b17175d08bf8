#include "service.h"

#include <memory>
#include <string>

#include <gmock/gmock.h>

namespace power_off {
namespace {

using std::chrono::milliseconds;
using testing::_;
using testing::AllOf;
using testing::ByMove;
using testing::DoAll;
using testing::Ge;
using testing::InSequence;
using testing::Le;
using testing::Return;
using testing::SaveArg;
using testing::StrictMock;

class Mock_process : public Process {
 public:
    MOCK_METHOD(void, terminate, (), (override));
    MOCK_METHOD(void, kill, (), (override));
    MOCK_METHOD(bool, await_end, (Clock::time_point), (override));
};

class Mock_machine : public Machine {
 public:
    MOCK_METHOD(std::unique_ptr<Process>, find, (std::string const&), (override));
    MOCK_METHOD(void, power_off, (Clock::time_point), (override));
};

class Power_off_service : public testing::Test {
 protected:
    /// The machine has that process; it stays the test's to watch.
    StrictMock<Mock_process>& find_process() {
        auto process = std::make_unique<StrictMock<Mock_process>>();
        auto& watched = *process;
        EXPECT_CALL(machine, find("vyn_per_daemon")).WillOnce(Return(ByMove(std::move(process))));
        sut.handle("lookup vyn_per_daemon");
        return watched;
    }

    StrictMock<Mock_machine> machine;
    Service sut{machine};
};

TEST_F(Power_off_service, Ends_the_process_and_then_the_machine) {
    auto& process = find_process();
    InSequence const order;
    EXPECT_CALL(process, terminate());
    EXPECT_CALL(process, await_end(_)).WillOnce(Return(true));
    EXPECT_CALL(machine, power_off(_));
    sut.handle("terminate");
    sut.handle("poweroff 60000");
}

TEST_F(Power_off_service, Kills_a_process_that_does_not_end_in_its_time) {
    auto& process = find_process();
    InSequence const order;
    EXPECT_CALL(process, await_end(_)).WillOnce(Return(false));
    EXPECT_CALL(process, kill());
    EXPECT_CALL(machine, power_off(_));
    sut.handle("poweroff 60000");
}

TEST_F(Power_off_service, Keeps_two_seconds_of_a_long_budget_for_the_power_off_itself) {
    auto& process = find_process();
    Clock::time_point for_process;
    Clock::time_point for_machine;
    EXPECT_CALL(process, await_end(_)).WillOnce(DoAll(SaveArg<0>(&for_process), Return(true)));
    EXPECT_CALL(machine, power_off(_)).WillOnce(SaveArg<0>(&for_machine));
    auto const before = Clock::now();
    sut.handle("poweroff 60000");
    EXPECT_THAT(for_machine, AllOf(Ge(before + milliseconds(60'000)), Le(Clock::now() + milliseconds(60'000))));
    EXPECT_EQ(for_machine - for_process, milliseconds(2'000));
}

TEST_F(Power_off_service, Keeps_a_fifth_of_a_short_budget) {
    auto& process = find_process();
    Clock::time_point for_process;
    Clock::time_point for_machine;
    EXPECT_CALL(process, await_end(_)).WillOnce(DoAll(SaveArg<0>(&for_process), Return(true)));
    EXPECT_CALL(machine, power_off(_)).WillOnce(SaveArg<0>(&for_machine));
    sut.handle("poweroff 1000");
    EXPECT_EQ(for_machine - for_process, milliseconds(200));
}

TEST_F(Power_off_service, Waits_for_nobody_when_there_is_no_such_process) {
    EXPECT_CALL(machine, find("vyn_per_daemon")).WillOnce(Return(ByMove(nullptr)));
    EXPECT_CALL(machine, power_off(_));
    sut.handle("lookup vyn_per_daemon");
    sut.handle("terminate");
    sut.handle("poweroff 60000");
}

TEST_F(Power_off_service, Looks_again_before_each_suspend) {
    find_process();
    auto& newer = find_process();
    EXPECT_CALL(newer, terminate());
    sut.handle("terminate");
}

TEST_F(Power_off_service, Leaves_out_what_is_no_command) {
    sut.handle("reboot");
    sut.handle("");
}

}  // namespace
}  // namespace power_off
