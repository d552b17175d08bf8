#include "bench/vm/emulator.h"

#include <string>

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using testing::Contains;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsSupersetOf;

TEST(Emulator, Is_told_what_the_machine_is_like) {
    Machine_options options;
    options.image = "/image";
    options.processors = 3;
    options.memory_mb = 300;
    options.kernel_options = "quiet-please";
    auto const words = command_line(options, "/run/x");
    EXPECT_EQ(words.front(), "qemu-system-aarch64");
    EXPECT_THAT(words, IsSupersetOf({"/image/kernel", "/image/initrd", "3", "300"}));
    EXPECT_THAT(words, Contains(HasSubstr("quiet-please")));
}

TEST(Emulator, Gives_the_machine_no_network) {
    auto const words = command_line({"/image"}, "/run/x");
    auto const option = std::find(words.begin(), words.end(), "-nic");
    ASSERT_NE(option, words.end());
    EXPECT_EQ(*std::next(option), "none");
}

TEST(Emulator, Has_a_socket_for_each_line_of_the_machine) {
    auto const words = command_line({"/image"}, "/run/x");
    for (std::string const line : {"log", "state", "restart", "shell", "journal"}) {
        EXPECT_THAT(words, Contains(HasSubstr("path=/run/x/" + line + ","))) << line;
    }
    EXPECT_THAT(words, Contains("unix:/run/x/control,server=on,wait=off"));
}

}  // namespace
}  // namespace bench::vm
