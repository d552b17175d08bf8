#include "bench/hypervisor/journal.h"
#include "command_fixture.h"

#include <cerrno>

namespace bench::hypervisor {
namespace {

using nlohmann::json;

class Inspection_commands_test : public Command_fixture {};

TEST_F(Inspection_commands_test, The_journal_lists_the_requests_of_one_file) {
    model.control_file("set_status")->write("startingup", 0, 100);
    model.control_file("command_request")->write("restartao", 0, 150);
    model.control_file("set_status")->write("running", 10, 200);
    json const requests = sut({{"do", "journal"}, {"file", "set_status"}})["requests"];
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0]["text"], "startingup");
    EXPECT_EQ(
        requests[1],
        (json{{"file", "set_status"}, {"number", 2}, {"t", 200}, {"offset", 10}, {"text", "running"}, {"written", 7}}));
}

TEST_F(Inspection_commands_test, Only_control_files_have_a_journal) {
    EXPECT_EQ(sut({{"do", "journal"}, {"file", "event0"}})["ok"], false);
    EXPECT_EQ(sut({{"do", "journal"}})["ok"], false);
}

TEST_F(Inspection_commands_test, The_list_shows_devices_and_files) {
    model.control_file("set_status")->write("running", 0, 0);
    json const answer = sut({{"do", "list"}});
    EXPECT_EQ(answer["devices"],
              json::array({{{"device", "event0"}, {"event_types", 3}, {"readers", 1}, {"hung_up", false}}}));
    EXPECT_EQ(answer["files"],
              json::array({{{"file", "set_status"}, {"requests", 1}}, {{"file", "command_request"}, {"requests", 0}}}));
}

TEST(Journal_test, A_failed_slow_request_shows_the_error_and_the_delay) {
    Request request;
    request.bytes = "running";
    request.error = EIO;
    request.delay = std::chrono::milliseconds(5);
    json const description = describe("set_status", request);
    EXPECT_EQ(description["errno"], "EIO");
    EXPECT_EQ(description["delay_ms"], 5);
    EXPECT_FALSE(description.contains("written"));
}

TEST(Journal_test, Bytes_that_are_no_readable_text_are_shown_in_hexadecimal_too) {
    Request request;
    request.bytes = std::string("a\n\xff\0", 4);
    EXPECT_EQ(describe("set_status", request)["hex"], "610aff00");
    request.bytes = "running";
    EXPECT_FALSE(describe("set_status", request).contains("hex"));
}

}  // namespace
}  // namespace bench::hypervisor
