#include "base/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace base {
namespace {

bool is_open(int number) {
    return ::fcntl(number, F_GETFD) != -1;
}

TEST(Descriptor, Is_closed_at_the_end_of_its_owner_also_number_zero) {
    int const null = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    int const input = ::dup(STDIN_FILENO);
    int const zero = ::dup2(null, STDIN_FILENO);
    for (int const number : {null, zero}) {
        {
            Descriptor const sut(number);
            EXPECT_EQ(sut.number(), number);
            EXPECT_TRUE(sut.is_open());
            EXPECT_TRUE(is_open(number));
        }
        EXPECT_FALSE(is_open(number)) << number;
    }
    if (input >= 0) {
        ::dup2(input, STDIN_FILENO);
        ::close(input);
    }
    EXPECT_FALSE(Descriptor(-1).is_open());
}

}  // namespace
}  // namespace base
