#include "bench/json_lines/line_splitter.h"

#include <gtest/gtest.h>

namespace bench {
namespace {

TEST(Line_splitter_test, Nothing_has_arrived_so_there_is_no_line) {
    Line_splitter sut;
    EXPECT_EQ(sut.next(), std::nullopt);
    EXPECT_EQ(sut.rest(), std::nullopt);
}

TEST(Line_splitter_test, A_line_that_arrives_in_pieces_comes_out_whole_once_its_end_is_there) {
    Line_splitter sut;
    sut.add("ab");
    EXPECT_EQ(sut.next(), std::nullopt);
    sut.add("c\n");
    EXPECT_EQ(sut.next(), "abc");
    EXPECT_EQ(sut.next(), std::nullopt);
}

TEST(Line_splitter_test, Lines_that_arrive_together_come_out_one_by_one_and_empty_ones_stay) {
    Line_splitter sut;
    sut.add("a\n\nb\nrest");
    EXPECT_EQ(sut.next(), "a");
    EXPECT_EQ(sut.next(), "");
    EXPECT_EQ(sut.next(), "b");
    EXPECT_EQ(sut.next(), std::nullopt);
    EXPECT_EQ(sut.rest(), "rest");
    EXPECT_EQ(sut.rest(), std::nullopt);
}

TEST(Line_splitter_test, A_line_of_the_greatest_length_stays_whole) {
    Line_splitter sut;
    std::string const longest(Line_splitter::k_longest_line, 'x');
    sut.add(longest + "\nnext\n");
    EXPECT_EQ(sut.next(), longest);
    EXPECT_EQ(sut.next(), "next");
}

TEST(Line_splitter_test, A_longer_line_is_given_out_in_pieces) {
    Line_splitter sut;
    std::string const longest(Line_splitter::k_longest_line, 'x');
    sut.add(longest + "yz\n");
    EXPECT_EQ(sut.next(), longest);
    EXPECT_EQ(sut.next(), "yz");
}

}  // namespace
}  // namespace bench
