#include "ara/log/argument_encoder.h"

#include "ara/log/argument_decoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace ara::log {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

std::vector<Argument> decoded(Argument_encoder const& sut) {
    return decode_arguments(sut.data(), sut.size());
}

std::vector<unsigned> bytes(Argument_encoder const& sut) {
    std::vector<unsigned> result;
    for (std::size_t at = 0; at < sut.size(); ++at) {
        result.push_back(static_cast<unsigned char>(sut.data()[at]));
    }
    return result;
}

TEST(Argument_encoder, Writes_text_as_type_info_length_bytes_and_terminator) {
    Argument_encoder sut;
    sut.add_text("Hi");
    EXPECT_THAT(bytes(sut), ElementsAre(0x00, 0x82, 0, 0, 3, 0, 'H', 'i', 0));
    EXPECT_EQ(sut.count(), 1);
}

TEST(Argument_encoder, Writes_a_boolean_as_one_byte) {
    Argument_encoder sut;
    sut.add_bool(true);
    EXPECT_THAT(bytes(sut), ElementsAre(0x11, 0, 0, 0, 1));
}

TEST(Argument_encoder, Writes_numbers_with_their_width_and_sign) {
    Argument_encoder sut;
    sut.add_number(std::int16_t{-2});
    sut.add_number(std::uint32_t{0x01020304});
    EXPECT_THAT(bytes(sut), ElementsAre(0x22, 0, 0, 0, 0xfe, 0xff, 0x43, 0, 0, 0, 4, 3, 2, 1));
}

TEST(Argument_encoder, Writes_bytes_as_raw_data) {
    Argument_encoder sut;
    std::vector<std::uint8_t> const data{0xde, 0xad};
    sut.add_bytes(data.data(), data.size());
    EXPECT_THAT(bytes(sut), ElementsAre(0x00, 0x04, 0, 0, 2, 0, 0xde, 0xad));
}

TEST(Argument_encoder, Keeps_the_order_of_its_arguments) {
    Argument_encoder sut;
    sut.add_text("a");
    sut.add_number(std::numeric_limits<std::int64_t>::min());
    sut.add_number(std::numeric_limits<std::uint64_t>::max());
    sut.add_bool(false);
    EXPECT_THAT(decoded(sut),
                ElementsAre(Argument(std::string("a")), Argument(std::numeric_limits<std::int64_t>::min()),
                            Argument(std::numeric_limits<std::uint64_t>::max()), Argument(false)));
}

TEST(Argument_encoder, Says_how_much_of_a_long_text_it_cut) {
    Argument_encoder sut;
    sut.add_text(std::string(5000, 'x'));
    sut.finish();
    auto const arguments = decoded(sut);
    ASSERT_EQ(arguments.size(), 2U);
    auto const kept = std::get<std::string>(arguments[0]).size();
    EXPECT_GT(kept, 1300U);
    EXPECT_EQ(std::get<std::string>(arguments[1]), "[" + std::to_string(5000 - kept) + " bytes cut]");
    EXPECT_LE(sut.size(), Argument_encoder::k_capacity);
    EXPECT_EQ(sut.count(), 2);
}

TEST(Argument_encoder, Counts_what_follows_a_cut_argument_as_cut_too) {
    Argument_encoder sut;
    std::vector<std::uint8_t> const data(2000, 7);
    sut.add_bytes(data.data(), data.size());
    sut.add_text("tail");
    sut.add_number(1);
    sut.finish();
    auto const arguments = decoded(sut);
    ASSERT_EQ(arguments.size(), 2U);
    auto const kept = std::get<std::vector<std::uint8_t>>(arguments[0]).size();
    EXPECT_EQ(std::get<std::string>(arguments[1]), "[" + std::to_string(2000 - kept + 4 + 4) + " bytes cut]");
}

TEST(Argument_encoder, Cuts_text_between_two_characters) {
    Argument_encoder sut;
    std::string text(1, 'a');  // puts the two-byte characters on odd positions
    while (text.size() < 3000) {
        text += "\xc3\xa4";
    }
    sut.add_text(text);
    sut.finish();
    auto const kept = std::get<std::string>(decoded(sut).at(0)).size();
    EXPECT_EQ(kept % 2, 1U);
    EXPECT_EQ(std::get<std::string>(decoded(sut).at(1)), "[" + std::to_string(text.size() - kept) + " bytes cut]");
}

TEST(Argument_encoder, Counts_the_bytes_of_a_character_that_would_not_fit_whole) {
    for (std::size_t shift = 0; shift < 4; ++shift) {
        Argument_encoder sut;
        std::string text(shift, 'a');
        while (text.size() < 3000) {
            text += "\xf0\x9f\x9a\x97";
        }
        sut.add_text(text);
        sut.finish();
        auto const kept = std::get<std::string>(decoded(sut).at(0)).size();
        EXPECT_EQ(kept % 4, shift);
        EXPECT_EQ(std::get<std::string>(decoded(sut).at(1)), "[" + std::to_string(text.size() - kept) + " bytes cut]");
    }
}

TEST(Argument_encoder, Never_writes_past_its_end_whatever_is_added) {
    for (std::size_t length = 0; length < 1400; ++length) {
        Argument_encoder sut;
        for (int round = 0; round < 5; ++round) {
            sut.add_text(std::string(length, 'x'));
            sut.add_number(round);
            sut.add_bytes(nullptr, 0);
        }
        sut.finish();
        ASSERT_LE(sut.size(), Argument_encoder::k_capacity);
        ASSERT_EQ(decoded(sut).size(), sut.count());
    }
}

TEST(Argument_encoder, Takes_at_most_255_arguments_with_the_note) {
    Argument_encoder sut;
    for (int round = 0; round < 300; ++round) {
        sut.add_bool(true);
    }
    sut.finish();
    EXPECT_LE(sut.count(), 255);
    EXPECT_THAT(std::get<std::string>(decoded(sut).back()), HasSubstr("bytes cut]"));
}

TEST(Argument_decoder, Stops_at_what_is_cut_short_wherever_it_is_cut) {
    Argument_encoder encoder;
    std::vector<Argument> whole;
    std::vector<std::size_t> ends;
    auto const added = [&](Argument argument) {
        whole.push_back(std::move(argument));
        ends.push_back(encoder.size());
    };
    encoder.add_text("text");
    added(std::string("text"));
    encoder.add_bool(true);
    added(true);
    encoder.add_number(std::int8_t{-8});
    added(std::int64_t{-8});
    encoder.add_number(std::uint16_t{16});
    added(std::uint64_t{16});
    encoder.add_number(-32);
    added(std::int64_t{-32});
    encoder.add_number(std::uint64_t{64});
    added(std::uint64_t{64});
    encoder.add_bytes(reinterpret_cast<std::uint8_t const*>("raw"), 3);
    added(std::vector<std::uint8_t>{'r', 'a', 'w'});
    for (std::size_t size = 0; size <= encoder.size(); ++size) {
        std::vector<char> const cut(encoder.data(), encoder.data() + size);
        auto const count = std::upper_bound(ends.begin(), ends.end(), size) - ends.begin();
        EXPECT_THAT(decode_arguments(cut.data(), size), ElementsAreArray(whole.begin(), whole.begin() + count)) << size;
    }
}

TEST(Argument_decoder, Stops_at_what_it_does_not_know) {
    constexpr std::uint32_t wider_than_64_bits = type_info::k_unsigned | 5U;
    constexpr std::uint32_t floating_point = 0x00000083U;
    for (std::uint32_t const info : {wider_than_64_bits, floating_point, 0U}) {
        Argument_encoder encoder;
        encoder.add_text("known");
        std::vector<char> bytes(encoder.data(), encoder.data() + encoder.size());
        auto const* const head = reinterpret_cast<char const*>(&info);
        bytes.insert(bytes.end(), head, head + sizeof info);
        bytes.insert(bytes.end(), 16, '\1');
        EXPECT_THAT(decode_arguments(bytes.data(), bytes.size()), ElementsAre(Argument(std::string("known")))) << info;
    }
}

TEST(Argument_decoder, Takes_a_text_without_a_terminator_for_an_empty_one) {
    std::array<char, 6> const bytes{0x00, 0x02, 0x00, 0x00, 0x00, 0x00};
    EXPECT_THAT(decode_arguments(bytes.data(), bytes.size()), ElementsAre(Argument(std::string())));
}

TEST(Argument_decoder, Shows_arguments_as_a_viewer_does) {
    EXPECT_EQ(
        to_text({std::string("text"), true, std::int64_t{-1}, std::uint64_t{2}, std::vector<std::uint8_t>{0x0a, 0xff}}),
        "text true -1 2 0a'ff");
    EXPECT_EQ(to_text({false}), "false");
}

}  // namespace
}  // namespace ara::log
