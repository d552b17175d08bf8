#include "utilities/serialization.h"

#include <stdexcept>

#include <gmock/gmock.h>

namespace utilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char const* k_text = "reached end of data while parsing";

/// The number as the host has it in memory.
template <class Number>
Bytes raw(Number number) {
    auto const* first = reinterpret_cast<std::uint8_t const*>(&number);
    return {first, first + sizeof number};
}

Bytes operator+(Bytes left, Bytes const& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes header(std::uint32_t type, std::uint64_t length) {
    return raw(type) + raw(length);
}

/// Decodes what follows the outer header.
Type_length_values decode(Bytes const& bytes) {
    auto iterator = bytes.begin();
    return deserialize_vector(bytes.size(), iterator, bytes.end());
}

template <class Call>
void expect_end_of_data(Call call) {
    try {
        call();
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), k_text);
    }
}

TEST(List, An_element_is_its_type_its_length_and_its_value) {
    EXPECT_EQ(serialize(Type_length_value("kOn")), header(0, 3) + Bytes({'k', 'O', 'n'}));
    EXPECT_EQ(serialize(Type_length_value(7U)), header(1, 4) + raw(7U));
    EXPECT_EQ(serialize(Type_length_value(Payload_type::list, {1, 2})), header(2, 2) + Bytes({1, 2}));
}

TEST(List, An_empty_text_is_twelve_bytes_with_length_zero) {
    EXPECT_EQ(serialize(Type_length_value("")), header(0, 0));
    EXPECT_THAT(serialize(Type_length_value("")), SizeIs(12));
}

TEST(List, An_empty_text_at_the_end_takes_the_place_of_an_element_that_was_there) {
    auto const bytes = header(0, 3) + Bytes({'k', 'O', 'n'}) + header(0, 0);
    Type_length_values list{Type_length_value(7U), Type_length_value("kOff"), Type_length_value("surplus")};
    auto iterator = bytes.begin();
    deserialize_vector(bytes.size(), iterator, bytes.end(), list);
    EXPECT_THAT(list, ElementsAre(Type_length_value("kOn"), Type_length_value("")));
}

TEST(List, An_empty_list_is_a_frame_of_twelve_bytes) {
    EXPECT_EQ(serialize(Type_length_values{}), header(2, 0));
}

TEST(List, A_list_of_a_number_and_a_text_is_forty_seven_bytes) {
    auto const bytes = serialize({Type_length_value(7U), Type_length_value("kPrepSD")});

    EXPECT_EQ(bytes,
              header(2, 35) + header(1, 4) + raw(7U) + header(0, 7) + Bytes({'k', 'P', 'r', 'e', 'p', 'S', 'D'}));
    EXPECT_THAT(bytes, SizeIs(47));
}

TEST(List, Nothing_is_allocated_beyond_the_encoded_bytes) {
    EXPECT_EQ(serialize(Type_length_value("kPrepSD")).capacity(), 19U);
    EXPECT_EQ(serialize({Type_length_value(7U), Type_length_value("kPrepSD")}).capacity(), 47U);
}

TEST(List, No_bytes_are_no_elements) {
    EXPECT_THAT(decode({}), IsEmpty());
}

TEST(List, What_was_encoded_is_decoded) {
    Type_length_values const list{Type_length_value(7U), Type_length_value(""), Type_length_value("kPrepSD"),
                                  Type_length_value(static_cast<Payload_type>(0xFFFFFFFF), Bytes(1000, 42))};
    auto const bytes = serialize(list);

    auto iterator = bytes.begin() + 12;
    auto const decoded = deserialize_vector(bytes.size() - 12, iterator, bytes.end());

    EXPECT_EQ(decoded, list);
    EXPECT_EQ(iterator, bytes.end());
}

TEST(List, A_frame_cut_anywhere_is_refused) {
    auto const whole = serialize({Type_length_value(7U), Type_length_value("kPrepSD")});
    for (std::size_t length = 13; length < whole.size(); ++length) {
        if (length == 28) {
            continue;  // cut between the elements: complete
        }
        expect_end_of_data([&] { decode(Bytes(whole.begin() + 12, whole.begin() + static_cast<long>(length))); });
    }
}

TEST(List, A_frame_shorter_than_announced_is_refused_before_any_element_is_read) {
    auto const bytes = serialize(Type_length_value("kOn"));
    auto iterator = bytes.begin();

    expect_end_of_data([&] { deserialize_vector(bytes.size() + 1, iterator, bytes.end()); });

    EXPECT_EQ(iterator, bytes.begin());
}

TEST(List, An_element_that_claims_more_than_the_frame_holds_is_refused_whatever_it_claims) {
    for (std::uint64_t const claimed : {std::uint64_t{4}, std::uint64_t{1} << 31U, std::uint64_t{1} << 32U,
                                        std::uint64_t{1} << 63U, ~std::uint64_t{0}, ~std::uint64_t{0} - 11}) {
        expect_end_of_data([&] { decode(header(0, claimed) + Bytes({1, 2, 3})); });
    }
}

TEST(List, A_length_announced_beyond_all_memory_is_refused) {
    Bytes const bytes(3);
    auto iterator = bytes.begin();
    expect_end_of_data([&] { deserialize_vector(~std::uint64_t{0}, iterator, bytes.end()); });
}

TEST(List, All_elements_up_to_the_end_are_read_even_if_fewer_bytes_were_announced) {
    auto const bytes = serialize(Type_length_value("a")) + serialize(Type_length_value("b"));
    auto iterator = bytes.begin();
    EXPECT_THAT(deserialize_vector(13, iterator, bytes.end()),
                ElementsAre(Type_length_value("a"), Type_length_value("b")));
}

TEST(Advance_with_check, Moves_up_to_the_end_and_not_beyond) {
    Bytes const bytes(5);
    auto iterator = bytes.begin();

    advance_with_check(iterator, 2, bytes.end());
    EXPECT_EQ(iterator - bytes.begin(), 2);
    advance_with_check(iterator, 0, bytes.end());
    EXPECT_EQ(iterator - bytes.begin(), 2);
    expect_end_of_data([&] { advance_with_check(iterator, 4, bytes.end()); });
    EXPECT_EQ(iterator - bytes.begin(), 2);
    advance_with_check(iterator, 3, bytes.end());
    EXPECT_EQ(iterator, bytes.end());
}

TEST(Deserialize_element, Copies_the_value_and_stands_behind_it) {
    Bytes const bytes{1, 2, 3, 4};
    auto iterator = bytes.begin();

    auto const element = deserialize_element(Payload_type::string, 3, iterator, bytes.end());

    EXPECT_EQ(element, Type_length_value(Payload_type::string, {1, 2, 3}));
    EXPECT_EQ(iterator - bytes.begin(), 3);
    expect_end_of_data([&] { deserialize_element(Payload_type::string, 2, iterator, bytes.end()); });
}

// Whatever the list held before, and also after a message that broke off.
TEST(List, A_list_that_is_used_again_holds_the_next_message_and_nothing_else) {
    Type_length_values const answer{Type_length_value(7U), Type_length_value("kPrepSD"), Type_length_value(0U)};
    Type_length_values used;
    for (auto const& list : {answer, Type_length_values{Type_length_value("")}, answer, Type_length_values{},
                             Type_length_values{Type_length_value(std::string(100, 'x')), Type_length_value(1U)}}) {
        auto const bytes = serialize(list);
        auto iterator = bytes.begin() + k_header_size;
        deserialize_vector(bytes.size() - k_header_size, iterator, bytes.end(), used);
        EXPECT_EQ(used, list);
        auto cut = bytes.begin() + k_header_size;
        if (!list.empty()) {
            expect_end_of_data(
                [&] { deserialize_vector(bytes.size() - k_header_size - 1, cut, bytes.end() - 1, used); });
        }
    }
}

TEST(List, A_list_that_is_used_again_keeps_its_memory) {
    auto const bytes = serialize(Type_length_values{Type_length_value("kPrepSD"), Type_length_value(0U)});
    auto used = decode({bytes.begin() + k_header_size, bytes.end()});
    auto const* const before = used[0].get_value().data();
    auto iterator = bytes.begin() + k_header_size;
    deserialize_vector(bytes.size() - k_header_size, iterator, bytes.end(), used);
    EXPECT_EQ(used[0].get_value().data(), before);
}

}  // namespace
}  // namespace utilities
