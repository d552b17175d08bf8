#include "channel.h"

#include "support/temporary_directory.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace power_off {
namespace {

class Channel_of_commands : public testing::Test {
 protected:
    void write(std::string const& text) const {
        int const descriptor = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(descriptor, 0);
        EXPECT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        ::close(descriptor);
    }

    test_support::Temporary_directory directory;
    std::string path{directory.file("poweroff")};
};

TEST_F(Channel_of_commands, Is_a_FIFO_that_its_owner_alone_may_use) {
    Channel const sut(path, "no such user");
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(Channel_of_commands, Is_taken_as_it_is_when_it_is_there) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    Channel sut(path, "no such user");
    write("terminate\n");
    EXPECT_EQ(sut.read_line(), "terminate");
}

TEST_F(Channel_of_commands, Is_nothing_but_a_FIFO) {
    std::ofstream(path) << "data";
    EXPECT_THROW(Channel(path, "no such user"), std::runtime_error);
}

TEST_F(Channel_of_commands, Can_not_be_where_there_is_no_directory) {
    EXPECT_THROW(Channel(directory.file("nowhere/poweroff"), "no such user"), std::system_error);
}

TEST_F(Channel_of_commands, Gives_lines_however_they_arrive) {
    Channel sut(path, "no such user");
    write("lookup x\nterminate\npower");
    EXPECT_EQ(sut.read_line(), "lookup x");
    EXPECT_EQ(sut.read_line(), "terminate");
    write("off 5\n");
    EXPECT_EQ(sut.read_line(), "poweroff 5");
}

TEST_F(Channel_of_commands, Forgets_a_line_without_an_end) {
    Channel sut(path, "no such user");
    write(std::string(4'096, 'x'));
    write(std::string(10, 'x'));
    write("\nterminate\n");
    EXPECT_NE(sut.read_line(), "terminate") << "the rest of the long line";
    EXPECT_EQ(sut.read_line(), "terminate");
}

}  // namespace
}  // namespace power_off
