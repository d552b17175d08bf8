#include "bench/hypervisor/control_file.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace bench::hypervisor {
namespace {

TEST(Control_file_test, Every_write_is_one_request_with_its_bytes_offset_time_and_number) {
    Control_file sut("set_status");
    sut.write("startingup", 0, 100);
    Request const& second = sut.write("running", 10, 200);
    EXPECT_EQ(second.number, 2U);
    EXPECT_EQ(second.bytes, "running");
    EXPECT_EQ(second.offset, 10);
    EXPECT_EQ(second.time, 200);
    EXPECT_EQ(second.accepted, 7U);
    EXPECT_EQ(second.error, 0);
    ASSERT_EQ(sut.journal().size(), 2U);
    EXPECT_EQ(sut.journal().front().bytes, "startingup");
}

TEST(Control_file_test, A_write_that_fails_is_recorded_with_all_its_bytes_and_the_next_one_succeeds) {
    Control_file sut("command_request");
    Fault fault;
    fault.error = EIO;
    sut.faults().add(Operation::write, fault, 1);
    Request const failed = sut.write("restartao", 0, 0);
    EXPECT_EQ(failed.error, EIO);
    EXPECT_EQ(failed.accepted, 0U);
    EXPECT_EQ(failed.bytes, "restartao");
    EXPECT_EQ(sut.write("cancel", 0, 0).error, 0);
}

TEST(Control_file_test, The_journal_keeps_the_newest_requests) {
    Control_file sut("set_status");
    for (std::size_t number = 0; number <= Control_file::k_journal_length; ++number) {
        sut.write("x", 0, 0);
    }
    EXPECT_EQ(sut.journal().size(), Control_file::k_journal_length);
    EXPECT_EQ(sut.journal().front().number, 2U);
}

}  // namespace
}  // namespace bench::hypervisor
