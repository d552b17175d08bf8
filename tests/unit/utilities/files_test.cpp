#include "utilities/files.h"

#include "expect_system_error.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

#include <cerrno>
#include <system_error>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool another_makes_the_file = false;

}  // namespace

// Takes the place of the C library's in this program.
extern "C" int remove(char const* path) noexcept {
    auto* const removed = reinterpret_cast<int (*)(char const*)>(::dlsym(RTLD_NEXT, "remove"));
    if (another_makes_the_file) {
        removed(path);
    }
    return removed(path);
}

namespace utilities {
namespace {

using ara::log::LogLevel;
using test_support::Log_capture;
using test_support::logged_in;
using testing::ElementsAre;
using testing::IsEmpty;

class Files : public testing::Test {
 protected:
    ~Files() override { another_makes_the_file = false; }
    test_support::Temporary_directory directory;
};

TEST_F(Files, Exist_when_something_is_there) {
    EXPECT_TRUE(file_exists(directory.write("file", "")));
    EXPECT_TRUE(file_exists(directory.path()));
    EXPECT_FALSE(file_exists(directory.file("nothing")));
    EXPECT_FALSE(file_exists(""));
}

TEST_F(Files, That_are_deleted_are_gone) {
    auto const path = directory.write("file", "content");
    delete_file(path);
    EXPECT_FALSE(file_exists(path));
}

TEST_F(Files, That_are_not_there_need_no_deleting) {
    EXPECT_NO_THROW(delete_file(directory.file("nothing")));
    EXPECT_NO_THROW(delete_file(""));
}

TEST_F(Files, That_somebody_else_deletes_at_the_same_moment_need_no_deleting) {
    auto const path = directory.write("file", "");
    another_makes_the_file = true;
    EXPECT_NO_THROW(delete_file(path));
    EXPECT_FALSE(file_exists(path));
}

TEST_F(Files, That_can_not_be_deleted_are_an_error) {
    directory.write("file", "");
    expect_system_error(ENOTEMPTY, "remove('" + directory.path().string() + "')",
                        [&] { delete_file(directory.path()); });
}

TEST_F(Files, A_deleter_removes_its_file) {
    auto const path = directory.write("file", "");
    {
        Deleter const sut(path, false);
        EXPECT_EQ(sut.get_path(), path);
        EXPECT_TRUE(file_exists(path));
    }
    EXPECT_FALSE(file_exists(path));
}

TEST_F(Files, A_deleter_removes_its_directory_with_all_that_is_in_it) {
    auto const path = directory.file("tree");
    make_dirs(path + "/a/b", 0755);
    directory.write("tree/a/file", "");
    { Deleter const sut(path, true); }
    EXPECT_FALSE(file_exists(path));
}

TEST_F(Files, A_deleter_does_not_mind_that_nothing_is_there) {
    Log_capture log;
    {
        Deleter const file(directory.file("nothing"), false);
        Deleter const tree(directory.file("nothing"), true);
    }
    EXPECT_THAT(log.messages(), IsEmpty());
}

TEST_F(Files, A_deleter_of_a_file_leaves_a_directory_with_content_and_logs_it) {
    Log_capture log;
    directory.write("file", "");
    { Deleter const sut(directory.path(), false); }
    EXPECT_TRUE(file_exists(directory.file("file")));
    auto const path = directory.path().string();
    std::system_error const reason(ENOTEMPTY, std::generic_category(), "remove('" + path + "')");
    EXPECT_THAT(log.messages(),
                ElementsAre(logged_in("SNCC", LogLevel::kError, "could not delete ", path, ": ", reason.what())));
}

}  // namespace
}  // namespace utilities
