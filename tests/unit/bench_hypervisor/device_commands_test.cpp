#include "bench/json_lines/clock.h"
#include "command_fixture.h"

#include <cerrno>
#include <cstring>

#include <poll.h>

namespace bench::hypervisor {
namespace {

using nlohmann::json;

class Device_commands_test : public Command_fixture {
 protected:
    // Type and code of the next record.
    std::pair<int, int> next_record() {
        std::string const bytes = device->read(k_reader, 24).bytes;
        std::uint16_t type = 0;
        std::uint16_t code = 0;
        EXPECT_EQ(bytes.size(), 24U);
        std::memcpy(&type, bytes.data() + 16, sizeof type);
        std::memcpy(&code, bytes.data() + 18, sizeof code);
        return {type, code};
    }
};

TEST_F(Device_commands_test, Keys_are_pressed_by_the_names_of_the_keyboard) {
    std::vector<std::pair<std::string, int>> const keys{{"r", 19}, {"n", 49}, {"s", 31}, {"p", 25}, {"power", 116}};
    for (auto const& [name, code] : keys) {
        json const answer = sut({{"do", "press"}, {"device", "event0"}, {"key", name}});
        EXPECT_EQ(answer["ok"], true) << answer;
        EXPECT_EQ(answer["code"], code);
        EXPECT_EQ(next_record(), std::make_pair(1, code)) << name;
        EXPECT_EQ(waiting_records(), 3U);
    }
}

TEST_F(Device_commands_test, A_press_tells_its_time_and_wakes_the_readers) {
    std::int64_t const before = monotonic_ns();
    json const answer = sut({{"do", "press"}, {"key", "n"}});
    EXPECT_GE(answer["t"].get<std::int64_t>(), before);
    EXPECT_LE(answer["t"].get<std::int64_t>(), monotonic_ns());
    EXPECT_EQ(changes, 1);
}

TEST_F(Device_commands_test, A_key_can_be_given_by_code_and_with_another_event_type) {
    sut({{"do", "press"}, {"key", 116}, {"type", "EV_PWR"}});
    EXPECT_EQ(next_record(), std::make_pair(22, 116));
    waiting_records();
    sut({{"do", "press"}, {"key", "power"}, {"type", 22}});
    EXPECT_EQ(next_record(), std::make_pair(22, 116));
}

TEST_F(Device_commands_test, A_raw_record_is_sent_alone) {
    EXPECT_EQ(sut({{"do", "record"}, {"type", 4}, {"code", 5}, {"value", -6}})["ok"], true);
    EXPECT_EQ(next_record(), std::make_pair(4, 5));
    EXPECT_EQ(waiting_records(), 0U);
}

TEST_F(Device_commands_test, A_device_is_added_with_keys_unless_told_otherwise) {
    EXPECT_EQ(sut({{"do", "add_device"}, {"device", "event1"}})["ok"], true);
    EXPECT_EQ(sut({{"do", "add_device"}, {"device", "event2"}, {"events", {"EV_SYN", "EV_MSC"}}})["ok"], true);
    EXPECT_EQ(model.device("event1")->event_types(), 0b11U);
    EXPECT_EQ(model.device("event2")->event_types(), 0b10001U);
}

TEST_F(Device_commands_test, A_device_can_be_removed) {
    EXPECT_EQ(sut({{"do", "remove_device"}, {"device", "event0"}})["ok"], true);
    EXPECT_EQ(model.device("event0"), nullptr);
}

TEST_F(Device_commands_test, A_device_hangs_up_and_drops_or_keeps_what_waits) {
    sut({{"do", "add_device"}, {"device", "event1"}});
    model.device("event1")->add_reader(k_reader);
    for (char const* name : {"event0", "event1"}) {
        sut({{"do", "press"}, {"device", name}, {"key", "n"}});
    }
    sut({{"do", "hang_up"}, {"device", "event0"}});
    sut({{"do", "hang_up"}, {"device", "event1"}, {"keep_announcing", true}});
    EXPECT_EQ(device->poll(k_reader) & POLLIN, 0U);
    EXPECT_EQ(model.device("event1")->poll(k_reader) & POLLIN, unsigned{POLLIN});
    EXPECT_TRUE(device->hung_up());
    EXPECT_EQ(changes, 4);
}

class Wrong_device_command_test : public Command_fixture, public testing::WithParamInterface<char const*> {};

TEST_P(Wrong_device_command_test, A_wrong_command_gets_an_error_and_nothing_else_happens) {
    json const answer = table.answer(GetParam());
    EXPECT_EQ(answer["ok"], false) << answer;
    EXPECT_TRUE(answer["error"].is_string());
    EXPECT_EQ(waiting_records(), 0U);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(model.devices().size(), 1U);
    EXPECT_FALSE(device->hung_up());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, Wrong_device_command_test,
    testing::Values(R"({"do":"press"})", R"({"do":"press","key":"escape"})", R"({"do":"press","key":-1})",
                    R"({"do":"press","key":768})", R"({"do":"press","key":"n","device":"event9"})",
                    R"({"do":"press","key":"n","type":"EV_NONE"})", R"({"do":"press","key":"n","type":65536})",
                    R"({"do":"press","key":"n","times":2})", R"({"do":"press","key":null})",
                    R"({"do":"record","type":1,"code":2})", R"({"do":"record","type":1,"code":2,"value":2147483648})",
                    R"({"do":"add_device"})", R"({"do":"add_device","device":"event0"})",
                    R"({"do":"add_device","device":"a/b"})", R"({"do":"add_device","device":"e","events":["KEY"]})",
                    R"({"do":"remove_device","device":"event9"})", R"({"do":"hang_up","device":"event9"})",
                    R"({"do":"hang_up","keep_announcing":1})"));

}  // namespace
}  // namespace bench::hypervisor
