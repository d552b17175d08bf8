#include "statectl.h"
#include "support/temporary_directory.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>

namespace statectl {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class History : public testing::Test {
 protected:
    Result told(std::string const& subcommand) const {
        return run_shell(STATECTL " " + subcommand + " --directory " + directory.path().string());
    }

    test_support::Temporary_directory directory;
};

TEST_F(History, Says_why_it_can_not_tell_of_records_that_are_there) {
    directory.write("record.000001.jsonl", "torn\n\x01\xff\n");
    std::filesystem::create_directory(directory.path() / "record.000002.jsonl");
    for (auto const& subcommand : {"history", "last", "blame", "offenders"}) {
        auto const result = told(subcommand);
        EXPECT_EQ(result.status, 1) << subcommand;
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors, AllOf(HasSubstr("2 of 2 lines of the records are damaged and were left out\n"),
                                         HasSubstr("record.000002.jsonl: Is a directory\n"),
                                         HasSubstr("holds no record of a power cycle\n")));
    }
}

TEST_F(History, Wants_a_number_of_power_cycles_that_is_one) {
    auto const result = told("history -n 0");
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.errors, HasSubstr("Value 0 not in range 1 to 1000000000"));
}

TEST(Output, That_can_not_be_written_is_no_success) {
    for (auto const* const words : {"explain " TRACES "/tour.dlt", "--version", "check-config /dev/null"}) {
        auto const result = run_shell(STATECTL " " + std::string(words) + " >/dev/full");
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_THAT(result.errors, HasSubstr("what was to be printed is not all there: No space left on device"));
    }
}

}  // namespace
}  // namespace statectl
