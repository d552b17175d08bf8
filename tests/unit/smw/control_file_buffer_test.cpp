#include "statemanager/smw/control_file_buffer.h"

#include "support/file_size_limit.h"
#include "support/open_descriptors.h"
#include "support/temporary_directory.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::smw {
namespace {

using test_support::descriptors_on;
using test_support::File_size_limit;
using test_support::Temporary_directory;
using testing::IsEmpty;
using testing::SizeIs;

class Control_file_buffer_test : public testing::Test {
 protected:
    Temporary_directory directory;
    std::string const file{directory.file("word")};
};

TEST_F(Control_file_buffer_test, A_file_that_is_missing_is_made_for_whom_the_mask_allows) {
    mode_t const old_mask = ::umask(027);
    Control_file_buffer const sut(file);
    ::umask(old_mask);

    EXPECT_TRUE(sut.is_open());
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(Control_file_buffer_test, A_file_that_is_there_is_emptied) {
    directory.write("word", "old content");

    Control_file_buffer const sut(file);

    EXPECT_EQ(directory.read("word"), "");
}

TEST_F(Control_file_buffer_test, It_is_opened_for_writing_only_not_for_appending_and_not_inherited) {
    Control_file_buffer const sut(file);

    ASSERT_THAT(descriptors_on(file), SizeIs(1));
    int const descriptor = descriptors_on(file).front();
    EXPECT_EQ(::fcntl(descriptor, F_GETFL) & (O_ACCMODE | O_APPEND | O_NONBLOCK), O_WRONLY);
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
}

TEST_F(Control_file_buffer_test, Bytes_are_in_the_file_at_once_zeros_among_them) {
    Control_file_buffer sut(file);

    EXPECT_EQ(sut.sputn("a\0b", 3), 3);
    EXPECT_EQ(directory.read("word"), std::string("a\0b", 3));

    EXPECT_EQ(sut.sputc('\xFF'), 0xFF);
    EXPECT_EQ(directory.read("word"), std::string("a\0b\xFF", 4));
}

TEST_F(Control_file_buffer_test, A_short_write_is_not_completed_and_its_rest_is_gone) {
    Control_file_buffer sut(file);
    {
        File_size_limit const limit(4);
        EXPECT_EQ(sut.sputn("running", 7), 4);
    }
    EXPECT_EQ(sut.sputn("next", 4), 4);

    EXPECT_EQ(directory.read("word"), "runnnext");
}

TEST_F(Control_file_buffer_test, A_failed_write_takes_nothing_and_its_bytes_are_gone) {
    Control_file_buffer sut(file);
    {
        File_size_limit const limit(0);
        EXPECT_EQ(sut.sputn("running", 7), 0);
        EXPECT_EQ(sut.sputc('x'), std::streambuf::traits_type::eof());
    }
    EXPECT_EQ(sut.sputn("next", 4), 4);

    EXPECT_EQ(directory.read("word"), "next");
}

TEST_F(Control_file_buffer_test, Closing_works_once) {
    Control_file_buffer sut(file);

    EXPECT_TRUE(sut.close());
    EXPECT_FALSE(sut.is_open());
    EXPECT_THAT(descriptors_on(file), IsEmpty());
    EXPECT_FALSE(sut.close());
    EXPECT_EQ(sut.sputn("x", 1), 0);
}

TEST_F(Control_file_buffer_test, The_end_of_the_buffer_closes_the_file) {
    { Control_file_buffer const sut(file); }

    EXPECT_THAT(descriptors_on(file), IsEmpty());
}

TEST_F(Control_file_buffer_test, A_path_that_cannot_be_opened_leaves_it_closed) {
    EXPECT_FALSE(Control_file_buffer(directory.file("missing/word")).is_open());
    EXPECT_FALSE(Control_file_buffer(directory.path()).is_open());
    EXPECT_FALSE(Control_file_buffer("").is_open());
}

}  // namespace
}  // namespace ximo::ap::statemanager::smw
