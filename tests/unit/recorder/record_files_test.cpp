#include "tools/record/record_files.h"

#include "disk.h"
#include "lines.h"
#include "support/file_size_limit.h"
#include "support/temporary_directory.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include <dlfcn.h>
#include <gmock/gmock.h>

namespace statectl::record {

Disk disk;

}  // namespace statectl::record

// This takes the place of the C library's in this program.
extern "C" int fdatasync(int file) {
    using Function = int (*)(int);
    static auto* const real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "fdatasync"));
    auto& disk = statectl::record::disk;
    if (disk.is_failing) {
        ++disk.failed_syncs;
        errno = EIO;
        return -1;
    }
    auto const name = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file));
    disk.synced.push_back(name.filename().string() + ' ' + std::to_string(std::filesystem::file_size(name)));
    return real(file);
}

namespace statectl::record {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string first_of(std::string const& name) {
    std::ifstream file(name);
    std::string line;
    std::getline(file, line);
    return line;
}

class Files_of_records : public testing::Test {
 protected:
    std::string path() const { return directory.path(); }
    std::string text(Number number) const {
        return directory.read(std::filesystem::path(file_name(path(), number)).filename());
    }

    test_support::Temporary_directory directory;
    std::string const first{life_line("a", 1)};
};

TEST_F(Files_of_records, Are_bounded_in_size_and_count_and_each_begins_with_a_life) {
    Record_files files(path(), {200, 3, 100});
    for (int i = 0; i < 50; ++i) {
        files.add(event_line("transition", static_cast<Number>(i), "1,2,3"));
        files.write(first, false);
    }
    EXPECT_EQ(files.trouble(), "");
    auto const numbers = file_numbers(path());
    EXPECT_EQ(numbers.size(), 3U);
    EXPECT_GT(numbers.front(), 1U);
    for (auto const number : numbers) {
        EXPECT_EQ(first_of(file_name(path(), number)), first);
        EXPECT_LT(std::filesystem::file_size(file_name(path(), number)), 500U);
    }
    EXPECT_EQ(read_records(path()).damaged, 0U);
}

TEST_F(Files_of_records, That_can_not_be_read_are_named_with_the_reason_and_the_others_are_told) {
    directory.write("record.000001.jsonl", first + "\n");
    std::filesystem::create_directory(file_name(path(), 2));
    std::filesystem::create_symlink("nowhere", file_name(path(), 3));
    auto const records = read_records(path());
    EXPECT_EQ(records.lives.size(), 1U);
    EXPECT_THAT(records.unreadable, ElementsAre(file_name(path(), 2) + ": Is a directory",
                                                file_name(path(), 3) + ": No such file or directory"));
}

TEST_F(Files_of_records, Are_gone_on_with_behind_a_torn_line) {
    directory.write("record.000004.jsonl", first + "\n" + R"({"line":"eve)");
    Record_files files(path());
    files.add(event_line("transition", 1, "0,1,1"));
    files.write(first, true);
    EXPECT_EQ(text(4), first + "\n{\"line\":\"eve\n" + event_line("transition", 1, "0,1,1") + "\n");
    auto const records = read_records(path());
    EXPECT_EQ(records.damaged, 1U);
    ASSERT_EQ(records.lives.size(), 1U);
    EXPECT_EQ(records.lives[0].events.size(), 1U);
}

TEST_F(Files_of_records, Hold_every_line_once_after_a_disk_that_was_full_has_room_again) {
    Record_files files(path());
    {
        test_support::File_size_limit const full(first.size() + 20);
        files.add(first, true);
        files.add(event_line("transition", 1, "0,1,1"));
        files.write(first, true);
        EXPECT_THAT(files.trouble(), HasSubstr("nothing can be written"));
        files.add(event_line("transition", 2, "1,2,1"));
        files.write(first, true);
        EXPECT_NE(files.trouble(), "");
    }
    files.write(first, true);
    EXPECT_EQ(files.trouble(), "");
    EXPECT_EQ(text(1),
              first + "\n" + event_line("transition", 1, "0,1,1") + "\n" + event_line("transition", 2, "1,2,1") + "\n");
}

TEST_F(Files_of_records, Tell_a_disk_that_fails_until_it_has_taken_everything) {
    Record_files files(path());
    files.add(first, true);
    disk.is_failing = true;
    files.write(first, true);
    auto const trouble = files.trouble();
    EXPECT_THAT(trouble, HasSubstr("the disk does not take what was written: Input/output error"));
    for (Number i = 0; i < 5; ++i) {
        files.write(first, false);
        EXPECT_EQ(files.trouble(), trouble) << "too early for another try";
        files.add(event_line("transition", i, "1,2,3"));
        files.write(first, i == 3);
        EXPECT_EQ(files.trouble(), trouble);
    }
    EXPECT_EQ(disk.failed_syncs, 2);
    disk.is_failing = false;
    files.write(first, false);
    EXPECT_EQ(files.trouble(), trouble) << "nothing is known yet";
    files.write(first, true);
    EXPECT_EQ(files.trouble(), "");
}

TEST_F(Files_of_records, Are_each_on_the_disk_to_their_end_before_the_next_is_begun) {
    Record_files files(path(), {300, 3, 100});
    disk.synced.clear();
    for (int i = 0; i < 10; ++i) {
        files.add(event_line("transition", static_cast<Number>(i), "1,2,3"));
        files.write(first, i == 9);
    }
    auto const numbers = file_numbers(path());
    ASSERT_EQ(numbers.size(), 3U);
    for (auto const number : numbers) {
        std::filesystem::path const name(file_name(path(), number));
        EXPECT_THAT(disk.synced, testing::Contains(name.filename().string() + ' ' +
                                                   std::to_string(std::filesystem::file_size(name))));
    }
}

TEST_F(Files_of_records, Are_not_left_while_the_disk_does_not_take_them) {
    Record_files files(path(), {200, 20, 100});
    files.add(first, true);
    files.write(first, true);
    disk.is_failing = true;
    for (Number i = 0; i < 5; ++i) {
        files.add(event_line("transition", i, "1,2,3"));
        files.write(first, true);
    }
    EXPECT_EQ(file_numbers(path()).size(), 1U);
    EXPECT_THAT(files.trouble(), HasSubstr("the disk does not take what was written"));
    disk.is_failing = false;
    files.write(first, true);
    files.add(event_line("transition", 6, "1,2,3"));
    std::this_thread::sleep_for(std::chrono::milliseconds(1'100));  // a disk that fails is tried again after a second
    files.write(first, true);
    EXPECT_GT(file_numbers(path()).size(), 1U);
    EXPECT_EQ(read_records(path()).lives.at(0).events.size(), 6U);
    EXPECT_EQ(files.trouble(), "");
}

TEST_F(Files_of_records, Begin_with_the_life_that_their_first_lines_are_of) {
    auto const later = life_line("b", 1);
    Record_files files(path() + "/later", {200, 20, 100});
    files.add(first, true);
    for (Number i = 0; i < 5; ++i) {
        files.add(event_line("transition", i, "1,2,3"));
    }
    files.add(later, true);
    files.add(event_line("transition", 1, "0,1,1"));
    std::filesystem::create_directory(path() + "/later");
    files.write(later, true);
    auto const records = read_records(path() + "/later");
    ASSERT_EQ(records.lives.size(), 2U);
    EXPECT_EQ(records.lives[0].events.size(), 5U);
    EXPECT_EQ(records.lives[1].events.size(), 1U);
}

TEST_F(Files_of_records, Take_no_line_that_has_no_room_to_wait) {
    Record_files files(path() + "/missing", {1'000, 3, 5});
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(files.has_room(), i < 5);
        files.add("{}");
    }
    files.write(first, true);
    EXPECT_FALSE(files.has_room());
    EXPECT_THAT(files.trouble(), StartsWith(path() + "/missing: the directory can't be opened"));
}

TEST_F(Files_of_records, Begin_with_what_waited_for_their_directory) {
    Record_files files(path() + "/later");
    files.add(first, true);
    files.add(event_line("transition", 1, "0,1,1"));
    files.write(life_line("a", 1, 9, 1), true);
    std::filesystem::create_directory(path() + "/later");
    files.write(life_line("a", 1, 9, 1), true);
    EXPECT_EQ(files.trouble(), "");
    EXPECT_EQ(first_of(file_name(path() + "/later", 1)), first);
}

TEST_F(Files_of_records, Have_one_writer) {
    Record_files mine(path());
    mine.add(first, true);
    mine.write(first, true);
    Record_files other(path());
    other.add(first, true);
    other.write(first, true);
    EXPECT_THAT(other.trouble(), HasSubstr("another recorder writes here"));
    EXPECT_EQ(text(1), first + "\n");
}

}  // namespace
}  // namespace statectl::record
