#include "bench/vm/word_splitter.h"

#include <gmock/gmock.h>

namespace bench::vm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Word_splitter_of_a_port, Finds_the_words_in_what_nothing_separates) {
    Word_splitter sut;
    EXPECT_THAT(sut.add("startinguprunningrunnmcontrolled"), ElementsAre("startingup", "running", "runnmcontrolled"));
    EXPECT_THAT(sut.add("restartaorestartm3"), ElementsAre("restartao", "restartm3"));
}

TEST(Word_splitter_of_a_port, Waits_for_the_rest_of_a_word) {
    Word_splitter sut;
    EXPECT_THAT(sut.add("prepar"), IsEmpty());
    EXPECT_THAT(sut.add("ed4sdre"), ElementsAre("prepared4sd"));
    EXPECT_THAT(sut.add("suming"), ElementsAre("resuming"));
}

TEST(Word_splitter_of_a_port, Leaves_out_what_begins_no_word) {
    Word_splitter sut;
    EXPECT_THAT(sut.add("\n??postrun\n"), ElementsAre("postrun"));
    EXPECT_THAT(sut.add("running"), ElementsAre("running"));
}

}  // namespace
}  // namespace bench::vm
