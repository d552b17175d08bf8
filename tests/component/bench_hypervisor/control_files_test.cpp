#include "bench/json_lines/clock.h"
#include "mounted_fixture.h"

#include <fstream>
#include <thread>

namespace bench::hypervisor {
namespace {

using nlohmann::json;

class Control_files_test : public Mounted_fixture {
 protected:
    json requests(std::string const& file) { return sut->command({{"do", "journal"}, {"file", file}})["requests"]; }
};

TEST_F(Control_files_test, Each_word_of_a_stream_is_one_request_with_its_exact_bytes) {
    std::int64_t const before = monotonic_ns();
    std::ofstream stream(path("vmctl/set_status"), std::ios::out);
    ASSERT_TRUE(stream.good());
    stream << "startingup" << std::flush;
    stream << "running" << std::flush;
    EXPECT_TRUE(stream.good());
    json const journal = requests("set_status");
    ASSERT_EQ(journal.size(), 2U);
    EXPECT_EQ(journal[0]["text"], "startingup");
    EXPECT_EQ(journal[0]["written"], 10);
    EXPECT_EQ(journal[1]["text"], "running");
    EXPECT_GT(journal[0]["t"].get<std::int64_t>(), before);
    EXPECT_LT(journal[0]["t"], journal[1]["t"]);
    EXPECT_LT(journal[1]["t"].get<std::int64_t>(), monotonic_ns());
}

TEST_F(Control_files_test, Opening_for_writing_may_truncate) {
    Opened const file(path("vmctl/set_status"), O_WRONLY | O_TRUNC | O_CREAT);
    EXPECT_EQ(file.error(), 0);
    EXPECT_TRUE(requests("set_status").empty());
}

TEST_F(Control_files_test, No_other_file_can_be_made) {
    Opened const file(path("vmctl/other"), O_WRONLY | O_CREAT);
    EXPECT_EQ(file.error(), EACCES);
}

TEST_F(Control_files_test, A_slow_write_holds_its_writer_and_nobody_else) {
    sut->command({{"do", "fault"}, {"file", "set_status"}, {"operation", "write"}, {"delay_ms", 300}});
    Opened const slow(path("vmctl/set_status"), O_WRONLY);
    Opened const quick(path("vmctl/command_request"), O_WRONLY);
    std::int64_t slow_end = 0;
    std::thread writer([&] {
        EXPECT_EQ(::write(slow, "running", 7), 7);
        slow_end = monotonic_ns();
    });
    json const arrival = sut->await_event("write", {{"file", "set_status"}});
    EXPECT_EQ(::write(quick, "restartm3", 9), 9);
    std::int64_t const quick_end = monotonic_ns();
    writer.join();
    EXPECT_GE(slow_end - arrival["t"].get<std::int64_t>(), 300'000'000);
    EXPECT_LT(quick_end, slow_end);
}

TEST_F(Control_files_test, A_control_file_can_not_be_read) {
    Opened const file(path("vmctl/set_status"), O_RDWR);
    char byte = 0;
    EXPECT_EQ(::read(file, &byte, 1), -1);
    EXPECT_EQ(errno, EIO);
}

}  // namespace
}  // namespace bench::hypervisor
