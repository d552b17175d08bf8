#include "bench/vm/account.h"

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

TEST(Account_of_the_machine, Tells_the_power_off_service_s_commands_and_nothing_else_of_its_lines) {
    Account sut;
    EXPECT_THAT(sut.hear_power_off("Command: terminate\nThe process is there\nCommand: power"),
                ElementsAre(Field(&vehicle::Event::text, "terminate")));
    EXPECT_THAT(sut.hear_power_off("off 60000\n"), ElementsAre(Field(&vehicle::Event::text, "poweroff 60000")));
    EXPECT_THAT(sut.hear_power_off(""), IsEmpty());
}

}  // namespace
}  // namespace bench::vm
