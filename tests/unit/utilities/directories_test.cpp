#include "expect_system_error.h"
#include "support/temporary_directory.h"
#include "utilities/files.h"

#include <cerrno>
#include <filesystem>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool mkdtemp_fails_once = false;
bool somebody_else_is_faster = false;

}  // namespace

// These take the place of the C library's in this program.
extern "C" int mkdir(char const* path, mode_t mode) noexcept {
    auto* const made = reinterpret_cast<int (*)(char const*, mode_t)>(::dlsym(RTLD_NEXT, "mkdir"));
    if (somebody_else_is_faster) {
        made(path, mode);
    }
    return made(path, mode);
}

extern "C" char* mkdtemp(char* name) {
    if (std::exchange(mkdtemp_fails_once, false)) {
        errno = ENOSPC;
        return nullptr;
    }
    return reinterpret_cast<char* (*)(char*)>(::dlsym(RTLD_NEXT, "mkdtemp"))(name);
}

namespace utilities {
namespace {

using testing::StartsWith;

mode_t mode_of(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

class Directories : public testing::Test {
 protected:
    ~Directories() override {
        ::umask(before);
        somebody_else_is_faster = false;
    }
    test_support::Temporary_directory directory;
    mode_t before{::umask(022)};
};

TEST_F(Directories, The_containing_one_is_what_stands_before_the_last_slash) {
    EXPECT_EQ(get_containing_directory("/var/run/x.socket"), "/var/run");
    EXPECT_EQ(get_containing_directory("/x"), "/");
    EXPECT_EQ(get_containing_directory("a/x"), "a");
    EXPECT_EQ(get_containing_directory("x"), "");
    EXPECT_EQ(get_containing_directory(""), "");
}

TEST_F(Directories, Are_made_with_their_mode) {
    make_dir(directory.file("a"), 0750);
    EXPECT_EQ(mode_of(directory.file("a")), 0750U);
}

TEST_F(Directories, That_can_not_be_made_are_an_error) {
    expect_system_error(EEXIST, "mkdir('" + directory.path().string() + "')",
                        [&] { make_dir(directory.path(), 0755); });
    expect_system_error(ENOENT, "mkdir('" + directory.file("a/b") + "')",
                        [&] { make_dir(directory.file("a/b"), 0755); });
}

TEST_F(Directories, All_that_are_missing_on_a_path_are_made_parents_first) {
    make_dir(directory.file("a"), 0700);

    make_dirs(directory.file("a/b/c"), 0755);

    EXPECT_EQ(mode_of(directory.file("a")), 0700U);
    EXPECT_EQ(mode_of(directory.file("a/b")), 0755U);
    EXPECT_EQ(mode_of(directory.file("a/b/c")), 0755U);
}

TEST_F(Directories, That_are_all_there_need_no_making) {
    EXPECT_NO_THROW(make_dirs(directory.path(), 0755));
    EXPECT_NO_THROW(make_dirs(directory.path().string() + "/", 0755));
    EXPECT_NO_THROW(make_dirs("", 0755));
}

TEST_F(Directories, That_somebody_else_makes_at_the_same_moment_need_no_making) {
    somebody_else_is_faster = true;
    EXPECT_NO_THROW(make_dirs(directory.file("a/b/c"), 0755));
    EXPECT_TRUE(file_exists(directory.file("a/b/c")));
}

TEST_F(Directories, May_be_links_to_directories) {
    std::filesystem::create_directory_symlink(directory.path(), directory.file("link"));
    make_dirs(directory.file("link/a"), 0755);
    EXPECT_TRUE(file_exists(directory.file("a")));
}

TEST_F(Directories, A_link_to_nothing_in_the_way_is_an_error) {
    auto const link = directory.file("link");
    std::filesystem::create_symlink("nothing", link);
    expect_system_error(EEXIST, "mkdir('" + link + "')", [&] { make_dirs(link, 0755); });
}

TEST_F(Directories, A_file_in_the_way_is_an_error) {
    auto const file = directory.write("file", "");
    expect_system_error(ENOTDIR, "mkdir('" + file + "/a')", [&] { make_dirs(file + "/a/b", 0755); });
}

TEST_F(Directories, A_temporary_one_is_new_at_each_call) {
    Deleter const one(create_tmp_dir(), true);
    Deleter const two(create_tmp_dir(), true);

    EXPECT_THAT(one.get_path(), StartsWith("/tmp/state_notification_lib_test."));
    EXPECT_TRUE(file_exists(one.get_path()));
    EXPECT_NE(one.get_path(), two.get_path());
}

TEST_F(Directories, A_temporary_one_that_can_not_be_made_is_an_error) {
    mkdtemp_fails_once = true;
    expect_system_error(ENOSPC, "mkdtemp('/tmp/state_notification_lib_test.XXXXXX')", [] { create_tmp_dir(); });
}

// In a process of its own, which ends as any process does.
TEST_F(Directories, The_process_has_one_temporary_one_that_goes_with_it) {
    auto const report = directory.file("report");
    pid_t const child = ::fork();
    if (child == 0) {
        auto const& path = get_static_tmp_dir();
        make_dir(path + "/below", 0755);
        bool const same = &path == &get_static_tmp_dir() && file_exists(path);
        int const file = ::open(report.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        static_cast<void>(!::write(file, path.data(), same ? path.size() : 0));
        std::exit(0);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);

    auto const path = directory.read("report");
    EXPECT_THAT(path, StartsWith("/tmp/state_notification_lib_test."));
    EXPECT_FALSE(file_exists(path));
}

}  // namespace
}  // namespace utilities
