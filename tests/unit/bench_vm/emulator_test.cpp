#include "bench/vm/emulator.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using testing::Contains;
using testing::StartsWith;

Machine_options machine() {
    Machine_options options;
    options.image = "/image";
    return options;
}

std::string word_after(std::vector<std::string> const& words, std::string const& option) {
    auto const found = std::find(words.begin(), words.end(), option);
    return found == words.end() || std::next(found) == words.end() ? "" : *std::next(found);
}

struct Host_row {
    Host host;
    char const* accelerator;
    char const* processor;
};

class On_a_host : public testing::TestWithParam<Host_row> {};

TEST_P(On_a_host, The_processor_runs_the_machine_itself_where_it_can) {
    auto const words = command_line(machine(), "/run/x", GetParam().host);
    EXPECT_THAT(word_after(words, "-accel"), StartsWith(GetParam().accelerator));
    EXPECT_EQ(word_after(words, "-cpu"), GetParam().processor);
}

INSTANTIATE_TEST_SUITE_P(Emulator, On_a_host,
                         testing::Values(Host_row{{true, true}, "kvm", "host"},
                                         Host_row{{true, false}, "tcg", "cortex-a72"},
                                         Host_row{{false, true}, "tcg", "cortex-a72"},
                                         Host_row{{false, false}, "tcg", "cortex-a72"}));

TEST(Emulator, Counts_the_instructions_of_a_translated_machine_where_that_is_wanted) {
    auto options = machine();
    EXPECT_EQ(word_after(command_line(options, "/run/x", {}), "-icount"), "");
    options.counts_instructions = true;
    EXPECT_EQ(word_after(command_line(options, "/run/x", {}), "-icount"), "shift=2,sleep=on");
    EXPECT_EQ(word_after(command_line(options, "/run/x", {true, true}), "-icount"), "")
        << "the processor runs it itself";
}

TEST(Emulator, Gives_the_machine_no_network) {
    auto const words = command_line(machine(), "/run/x", {});
    EXPECT_EQ(word_after(words, "-nic"), "none");
}

TEST(Emulator, Takes_what_the_machine_writes_without_waking_another_thread) {
    EXPECT_THAT(command_line(machine(), "/run/x", {}), Contains("virtio-serial-pci,ioeventfd=off"));
}

}  // namespace
}  // namespace bench::vm
