#include "base/hex.h"

#include <gmock/gmock.h>

namespace base {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Read_text {
    char const* text;
    std::optional<Bytes> bytes;
};

class Hex : public testing::TestWithParam<Read_text> {};

TEST_P(Hex, Is_two_digits_a_byte) {
    EXPECT_EQ(from_hex(GetParam().text), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Read, Hex,
                         testing::Values(Read_text{"", Bytes{}}, Read_text{"00 0A f1", Bytes{0x00, 0x0a, 0xf1}},
                                         Read_text{" 000af1 ", Bytes{0x00, 0x0a, 0xf1}}, Read_text{"0", {}},
                                         Read_text{"0 1", {}}, Read_text{"012", {}}, Read_text{"0g", {}},
                                         Read_text{"0x1", {}}, Read_text{"-1", {}}, Read_text{"+1", {}},
                                         Read_text{"\t1", {}}));

TEST(Hex_text, Has_lower_case_digits_and_what_is_wanted_between) {
    EXPECT_EQ(to_hex(Bytes{}), "");
    EXPECT_EQ(to_hex(Bytes{0x00, 0x0a, 0xf1}), "00 0a f1");
    EXPECT_EQ(to_hex(std::string("\xff\n"), ""), "ff0a");
}

}  // namespace
}  // namespace base
