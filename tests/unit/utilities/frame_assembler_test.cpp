#include "utilities/frame_assembler.h"

#include <algorithm>
#include <cstring>

#include <gmock/gmock.h>
#include <malloc.h>

namespace utilities {
namespace {

Type_length_values const k_first{Type_length_value(7U), Type_length_value("kPrepSD")};
Type_length_values const k_second{Type_length_value("kOn")};

void append(Frame_assembler& sut, Bytes const& bytes) {
    sut.append(bytes.data(), bytes.size());
}

Bytes frame_header(std::uint64_t length) {
    Bytes bytes(12, 2);
    std::memcpy(bytes.data() + 4, &length, sizeof length);
    return bytes;
}

TEST(Frame_assembler, Nothing_arrived_is_no_message) {
    Frame_assembler sut;
    EXPECT_EQ(sut.take(), std::nullopt);
}

TEST(Frame_assembler, A_message_that_arrives_byte_by_byte_is_there_with_its_last_byte) {
    Frame_assembler sut;
    auto const bytes = serialize(k_first);
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
        sut.append(&bytes[i], 1);
        ASSERT_EQ(sut.take(), std::nullopt) << i;
    }
    sut.append(&bytes.back(), 1);
    EXPECT_EQ(sut.take(), k_first);
    EXPECT_EQ(sut.take(), std::nullopt);
}

TEST(Frame_assembler, Messages_that_arrive_together_are_taken_one_by_one) {
    Frame_assembler sut;
    auto bytes = serialize(k_first);
    auto const second = serialize(k_second);
    bytes.insert(bytes.end(), second.begin(), second.end());
    bytes.insert(bytes.end(), second.begin(), second.end() - 1);

    append(sut, bytes);

    EXPECT_EQ(sut.take(), k_first);
    EXPECT_EQ(sut.take(), k_second);
    EXPECT_EQ(sut.take(), std::nullopt);
    sut.append(&second.back(), 1);
    EXPECT_EQ(sut.take(), k_second);
}

std::size_t allocated() {
    auto const info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

// However the pieces are cut.
TEST(Frame_assembler, Messages_that_were_taken_leave_hardly_any_memory_behind) {
    auto const bytes = serialize(Type_length_values{Type_length_value(std::string(60'000, 'x'))});
    for (std::size_t const piece : {bytes.size(), bytes.size() - 100}) {
        auto const before = allocated();
        Frame_assembler sut;
        for (std::size_t sent = 0; sent < 100 * bytes.size(); sent += piece) {
            Bytes next(piece);
            for (std::size_t i = 0; i < piece; ++i) {
                next[i] = bytes[(sent + i) % bytes.size()];
            }
            append(sut, next);
            while (sut.take()) {
            }
        }
        EXPECT_LT(allocated(), before + 2 * bytes.size());
    }
}

// As the server receives it; what each byte more would need does not matter.
TEST(Frame_assembler, A_message_but_for_its_last_byte_needs_no_more_memory_than_the_longest) {
    auto const bytes = serialize(Type_length_values{Type_length_value(std::string(65'524, 'x'))});
    for (std::size_t const piece : {1U, 7U, 100U, 4'095U, 4'096U, 65'547U}) {
        auto const before = allocated();
        Frame_assembler sut;
        for (std::size_t sent = 0; sent + 1 < bytes.size(); sent += piece) {
            sut.append(&bytes[sent], std::min(piece, bytes.size() - 1 - sent));
            ASSERT_EQ(sut.take(), std::nullopt);
        }
        EXPECT_LE(allocated() - before, bytes.size() + 4'096)
            << "received " << piece << " at a time; a page may be lost";
    }
}

TEST(Frame_assembler, Without_anything_pending_needs_hardly_any_memory) {
    Frame_assembler sut;
    auto const before = allocated();
    append(sut, serialize(Type_length_values{Type_length_value(std::string(60'000, 'x'))}));
    while (sut.take()) {
    }
    EXPECT_LT(allocated(), before + 1'000);
}

TEST(Frame_assembler, An_empty_message_is_a_message) {
    Frame_assembler sut;
    append(sut, serialize(Type_length_values{}));
    EXPECT_EQ(sut.take(), Type_length_values{});
}

TEST(Frame_assembler, The_outer_type_is_not_looked_at) {
    Frame_assembler sut;
    auto bytes = serialize(k_second);
    bytes[0] = 99;
    append(sut, bytes);
    EXPECT_EQ(sut.take(), k_second);
}

TEST(Frame_assembler, The_longest_message_is_taken) {
    Frame_assembler sut;
    Type_length_values const longest{Type_length_value(std::string(64 * 1024 - 12, 'x'))};
    append(sut, serialize(longest));
    EXPECT_EQ(sut.take(), longest);
}

TEST(Frame_assembler, A_longer_message_is_refused_as_soon_as_it_is_announced) {
    for (std::uint64_t const length : {std::uint64_t{64 * 1024 + 1}, std::uint64_t{1} << 63U, ~std::uint64_t{0}}) {
        Frame_assembler sut;
        append(sut, frame_header(length));
        EXPECT_THROW(sut.take(), Exception_frame_too_long);
    }
}

TEST(Frame_assembler, An_element_that_leaves_its_frame_is_refused_even_if_more_bytes_follow) {
    Frame_assembler sut;
    auto bytes = serialize(k_second);
    bytes[16] = 4;  // the element's length, of which the frame holds 3
    append(sut, bytes);
    append(sut, serialize(k_second));
    EXPECT_THROW(sut.take(), std::out_of_range);
}

}  // namespace
}  // namespace utilities
