#include "bench/vm/journal.h"

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using vehicle::Kind;

TEST(Journal_of_the_machine, Leaves_out_lines_and_members_that_are_something_else) {
    Journal sut;
    EXPECT_THAT(sut.add("no JSON\n[1]\n"), IsEmpty());
    auto const entries = sut.add("{\"MESSAGE\":[1,2,3]}\n");
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0].message, "");
}

struct Row {
    Entry entry;
    Kind kind;
    char const* text;
};

class An_entry : public testing::TestWithParam<Row> {};

TEST_P(An_entry, Is_an_event_to_who_watches_the_daemon) {
    auto const event = to_event(GetParam().entry);
    ASSERT_TRUE(event);
    EXPECT_EQ(event->time, GetParam().entry.time);
    EXPECT_EQ(event->kind, GetParam().kind);
    EXPECT_EQ(event->text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, An_entry,
    testing::Values(Row{{7, "ap_statemanager.service", "Started", "start done"}, Kind::notification, "READY"},
                    Row{{7, "ap_statemanager.service", "x: Deactivated successfully.", ""}, Kind::ended, "0"},
                    Row{{7, "ap_statemanager.service", "x: Main process exited, code=killed, status=6/ABRT", ""},
                        Kind::ended,
                        "code=killed, status=6/ABRT"},
                    Row{{7, "MachineState-Running.target", "Reached", "start done"}, Kind::machine_state, "Running"}));

TEST(An_entry_of_somebody_else, Is_no_event) {
    EXPECT_FALSE(to_event({7, "ap_statemanager.service", "Starting", ""}));
    EXPECT_FALSE(to_event({7, "MachineState-Running.target", "Stopped", "stop done"}));
    EXPECT_FALSE(to_event({7, "dbus.service", "Started", "start done"}));
}

}  // namespace
}  // namespace bench::vm
