#include "statemanager/config/configuration_file.h"

#include "support/open_descriptors.h"
#include "support/temporary_directory.h"

#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ximo::ap::statemanager::config {
namespace {

using test_support::descriptors_on;
using test_support::Temporary_directory;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::ThrowsMessage;

TEST(Configuration_file, Is_read_whole_also_with_zero_bytes_and_beyond_one_chunk) {
    Temporary_directory const directory;
    std::string const content = std::string("{\0}\n", 4) + std::string(10000, 'x');

    Configuration_file const sut(directory.write("file", content));

    ASSERT_TRUE(sut.is_open());
    EXPECT_EQ(sut.read(), content);
}

TEST(Configuration_file, An_empty_file_reads_as_nothing) {
    Temporary_directory const directory;

    Configuration_file const sut(directory.write("file", ""));

    ASSERT_TRUE(sut.is_open());
    EXPECT_EQ(sut.read(), "");
}

TEST(Configuration_file, A_file_that_does_not_exist_is_not_open) {
    Temporary_directory const directory;

    Configuration_file const sut(directory.file("nothing"));

    EXPECT_FALSE(sut.is_open());
}

TEST(Configuration_file, A_file_of_the_largest_size_is_read_and_one_byte_more_is_refused) {
    Temporary_directory const directory;
    Configuration_file const largest(directory.write("largest", std::string(Configuration_file::k_largest, ' ')));
    Configuration_file const sut(directory.write("larger", std::string(Configuration_file::k_largest + 1, ' ')));

    EXPECT_EQ(largest.read().size(), 1048576U);
    EXPECT_THAT([&] { sut.read(); }, ThrowsMessage<std::runtime_error>("it is larger than 1048576 bytes"));
}

TEST(Configuration_file, A_file_that_never_ends_is_given_up) {
    Temporary_directory const directory;
    auto const path = directory.write("sparse", "");
    ASSERT_EQ(::truncate(path.c_str(), off_t{1} << 40), 0);

    Configuration_file const sut(path);

    EXPECT_THROW(sut.read(), std::runtime_error);
}

TEST(Configuration_file, A_directory_a_device_and_a_FIFO_that_nobody_writes_to_are_refused_at_once) {
    Temporary_directory const directory;
    ASSERT_EQ(::mkfifo(directory.file("fifo").c_str(), 0600), 0);

    for (auto const& path : {directory.file(""), std::string("/dev/zero"), directory.file("fifo")}) {
        Configuration_file const sut(path);

        ASSERT_TRUE(sut.is_open()) << path;
        EXPECT_THAT([&] { sut.read(); }, ThrowsMessage<std::runtime_error>("it is not a regular file")) << path;
    }
}

TEST(Configuration_file, Is_not_inherited_and_is_closed_at_the_end) {
    Temporary_directory const directory;
    auto const path = directory.write("file", "{}");

    auto sut = std::make_unique<Configuration_file>(path);

    ASSERT_THAT(descriptors_on(path), SizeIs(1));
    EXPECT_EQ(::fcntl(descriptors_on(path).front(), F_GETFD), FD_CLOEXEC);
    sut.reset();
    EXPECT_THAT(descriptors_on(path), IsEmpty());
}

// A daemon may be started with its standard input closed.
TEST(Configuration_file, Descriptor_0_is_as_good_as_any_other) {
    Temporary_directory const directory;
    auto const path = directory.write("file", "{}");
    int const standard_input = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(STDIN_FILENO);

    auto sut = std::make_unique<Configuration_file>(path);

    EXPECT_THAT(descriptors_on(path), ElementsAre(STDIN_FILENO));
    EXPECT_TRUE(sut->is_open());
    EXPECT_EQ(sut->read(), "{}");
    sut.reset();
    ::dup2(standard_input, STDIN_FILENO);
    ::close(standard_input);
}

TEST(Configuration_file, A_failure_of_reading_says_why) {
    Configuration_file const sut("/proc/self/mem");  // nothing is mapped at its start: reading there fails

    ASSERT_TRUE(sut.is_open());
    EXPECT_THAT([&] { sut.read(); }, ThrowsMessage<std::runtime_error>(HasSubstr("file can't be read: ")));
}

}  // namespace
}  // namespace ximo::ap::statemanager::config
