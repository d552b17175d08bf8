#include "command_line.h"
#include "tools/command.h"
#include "tools/json_text.h"
#include "tools/service_call.h"
#include "tools/time_text.h"
#include "tools/watch_report.h"

#include <cstdlib>
#include <ctime>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class Service_commands : public Command_line {};

TEST_F(Service_commands, To_keep_the_machine_awake_name_what_to_do_and_for_whom) {
    for (std::string const service : {"ecu-alive", "com-alive", "cwu"}) {
        EXPECT_FALSE(accepts(service)) << service;
        EXPECT_FALSE(accepts(service + " request")) << service;
        EXPECT_FALSE(accepts(service + " keep 1")) << service;
        EXPECT_TRUE(accepts(service + " request 1")) << service;
        EXPECT_TRUE(accepts(service + " release 1 --wait 0 --json")) << service;
    }
}

TEST_F(Service_commands, Take_bits_only_where_they_mean_something) {
    EXPECT_TRUE(accepts("com-alive request 1 --bits 000001 --cab 0 --cab 8191 --ac 16"));
    EXPECT_TRUE(accepts("com-alive release 1 --bits 000001 --cab 3"));
    EXPECT_TRUE(accepts("cwu request 1 --ac 255"));
    EXPECT_FALSE(accepts("com-alive release 1 --ac 1"));
    EXPECT_FALSE(accepts("cwu request 1 --cab 1"));
    EXPECT_FALSE(accepts("cwu release 1 --ac 1"));
    EXPECT_FALSE(accepts("ecu-alive request 1 --ac 1"));
}

TEST_F(Service_commands, Refuse_bits_that_are_none) {
    EXPECT_FALSE(accepts("com-alive request 1 --bits 00000"));
    EXPECT_FALSE(accepts("com-alive request 1 --bits 0g"));
    EXPECT_FALSE(accepts("com-alive request 1 --cab 8192"));
    EXPECT_FALSE(accepts("com-alive request 1 --cab -1"));
    EXPECT_FALSE(accepts("com-alive request 1 --ac 256"));
    EXPECT_FALSE(accepts("com-alive request 1 --wait -1"));
}

TEST_F(Service_commands, Restart_what_has_a_name_or_a_number) {
    EXPECT_TRUE(accepts("restart vm"));
    EXPECT_TRUE(accepts("restart M3"));
    EXPECT_TRUE(accepts("restart 0"));
    EXPECT_TRUE(accepts("restart 255"));
    EXPECT_FALSE(accepts("restart"));
    EXPECT_FALSE(accepts("restart everything"));
    EXPECT_FALSE(accepts("restart 256"));
}

TEST_F(Service_commands, List_and_watch) {
    EXPECT_TRUE(accepts("services --wait 0 --json"));
    EXPECT_FALSE(accepts("services udpnm"));
    EXPECT_TRUE(accepts("watch --json --instance udpnm"));
    EXPECT_FALSE(accepts("watch --config /nowhere/at/all.json"));
}

TEST(Time_text, Has_milliseconds_and_the_offset_of_the_time_zone) {
    ::setenv("TZ", "UTC-2", 1);
    ::tzset();
    std::chrono::system_clock::time_point const time(std::chrono::milliseconds(1'000'000'000'005));
    EXPECT_EQ(time_text(time), "2001-09-09T03:46:40.005+0200");
    ::unsetenv("TZ");
    ::tzset();
}

TEST(Result_of_a_call, Is_a_line_for_people) {
    Call_options options;
    options.instance = "1";
    testing::internal::CaptureStdout();
    EXPECT_EQ(report_success(options, "ECU alive requested", std::chrono::microseconds(1234)), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ECU alive requested for \"1\" (1.23 ms)\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(report_failure(options, "\"1\" is not offered"), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "ap_statectl: \"1\" is not offered\n");
}

TEST(Result_of_a_call, Is_a_JSON_object_on_demand) {
    using nlohmann::json;
    Call_options options;
    options.instance = "1";
    options.as_json = true;
    testing::internal::CaptureStdout();
    report_success(options, "ECU alive requested", std::chrono::microseconds(1234));
    EXPECT_EQ(json::parse(testing::internal::GetCapturedStdout()),
              (json{{"ok", true}, {"instance", "1"}, {"done", "ECU alive requested"}, {"microseconds", 1234}}));
    testing::internal::CaptureStdout();
    EXPECT_EQ(report_failure(options, "no"), 1);
    EXPECT_EQ(json::parse(testing::internal::GetCapturedStdout()),
              (json{{"ok", false}, {"instance", "1"}, {"error", "no"}}));
}

TEST(Result_of_a_call, Is_a_JSON_object_also_for_a_name_that_is_no_UTF_8) {
    using nlohmann::json;
    Call_options options;
    options.instance = "T\xfcr";
    options.as_json = true;
    testing::internal::CaptureStdout();
    EXPECT_EQ(report_success(options, "ECU alive requested", std::chrono::microseconds(1)), 0);
    EXPECT_EQ(json::parse(testing::internal::GetCapturedStdout())["instance"], "T\uFFFDr");
    testing::internal::CaptureStdout();
    EXPECT_EQ(report_failure(options, "no \xfc"), 1);
    EXPECT_EQ(json::parse(testing::internal::GetCapturedStdout())["error"], "no \uFFFD");
}

TEST(Json_text, Is_one_line_unless_it_is_indented_and_replaces_what_is_no_UTF_8) {
    EXPECT_EQ(json_text(nlohmann::json::object({{"name", "T\xfcr"}})), "{\"name\":\"T\uFFFDr\"}");
    EXPECT_EQ(json_text(nlohmann::json::object({{"name", "door"}}), 2), "{\n  \"name\": \"door\"\n}");
}

TEST(Report_of_a_watch, Names_each_bit) {
    Watch_report sut(false, {});
    testing::internal::CaptureStdout();
    sut.network_state({0, 0, 1});
    sut.user_data({0xc0, 1, 0});
    sut.offered("NetworkStateInterface", false);
    auto const text = testing::internal::GetCapturedStdout();
    EXPECT_THAT(text, HasSubstr("network_state  00 00 01  ECU alive\n"));
    EXPECT_THAT(text, HasSubstr("user_data      c0 01 00  car wake-up, awake, AC 1\n"));
    EXPECT_THAT(text, HasSubstr("withdrawn      NetworkStateInterface\n"));
}

TEST(Report_of_a_watch, Tells_user_data_that_was_asked_for_only_when_its_event_was_lost) {
    Watch_report sut(false, {});
    sut.user_data({0x80});
    testing::internal::CaptureStdout();
    sut.user_data_asked({0x80});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    sut.user_data_asked({0xc0});
    sut.user_data_asked({0xc0});
    EXPECT_THAT(testing::internal::GetCapturedStdout(), EndsWith("  user_data      c0  car wake-up, awake\n"));
}

TEST(Report_of_a_watch, Is_a_JSON_object_a_line_on_demand) {
    using nlohmann::json;
    Watch_report sut(true, {});
    testing::internal::CaptureStdout();
    sut.network_state({0, 0, 1});
    auto line = json::parse(testing::internal::GetCapturedStdout());
    EXPECT_THAT(line["time"].get<std::string>(), HasSubstr("T"));
    line.erase("time");
    EXPECT_EQ(line, (json{{"event", "network_state"}, {"bytes", "00 00 01"}, {"set", {"ECU alive"}}}));
}

}  // namespace
}  // namespace statectl
