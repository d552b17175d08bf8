#include "bench/tour/picture.h"

#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace bench::tour {
namespace {

using testing::HasSubstr;
using testing::Not;
using vehicle::Kind;

constexpr std::int64_t k_second = 1'000'000'000;

std::vector<double> numbers(std::string const& text, std::string const& pattern) {
    std::vector<double> found;
    std::regex const expression(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        found.push_back(std::stod((*match)[1]));
    }
    return found;
}

// Each bar of the state lane, not the white ground.
constexpr char const* k_bar = "<rect x=\"([0-9.]+)\"";
constexpr char const* k_bar_width = "<rect x=\"[0-9.]+\" y=\"[0-9.]+\" width=\"([0-9.]+)\"";

TEST(Picture, Is_a_complete_document_of_an_empty_timeline) {
    auto const picture = draw({});
    EXPECT_EQ(picture.rfind("<svg ", 0), 0U);
    EXPECT_THAT(picture, HasSubstr("</svg>\n"));
    EXPECT_THAT(picture, Not(HasSubstr("nan")));
}

TEST(Picture, Ends_the_last_state_with_the_daemon) {
    auto const picture = draw(
        {{0, Kind::state_word, "shuttingdown"}, {k_second, Kind::ended, "0"}, {2 * k_second, Kind::key, "too late"}});
    auto const begins = numbers(picture, k_bar);
    auto const widths = numbers(picture, k_bar_width);
    auto const keys = numbers(picture, "<circle cx=\"([0-9.]+)\" cy=\"[0-9.]+\" r=\"4.5\"");
    ASSERT_EQ(begins.size(), 1U);
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_LT(begins[0] + widths[0], keys[0] - 20) << "a gap while no daemon runs";
}

TEST(Picture, Draws_each_life_of_the_daemon_in_a_band_of_its_own) {
    auto const picture = draw({{0, Kind::state_word, "running"},
                               {k_second, Kind::ended, "0"},
                               {2 * k_second, Kind::state_word, "running"},
                               {3 * k_second, Kind::ended, "0"}});
    auto const bands = numbers(picture, "<g transform=\"translate\\(0,([0-9.]+)\\)\">");
    ASSERT_EQ(bands.size(), 2U);
    EXPECT_GT(bands[1], bands[0] + 300);
    auto const begins = numbers(picture, k_bar);
    ASSERT_EQ(begins.size(), 2U);
    EXPECT_EQ(begins[0], begins[1]) << "both begin at the left";
    EXPECT_THAT(picture, HasSubstr(">2.00<")) << "times go on";
}

TEST(Picture, Has_a_lane_for_each_client_with_what_it_owed) {
    auto const picture = draw({{0, Kind::key, "p"},
                               event_of(k_second, Kind::client, {"my radio", "asked", "kPrepSD"}),
                               event_of(3 * k_second, Kind::client, {"my radio", "answered", "kPrepSD"}),
                               {4 * k_second, Kind::key, "r"}});
    EXPECT_THAT(picture, HasSubstr(">my radio<"));
    auto const begins = numbers(picture, k_bar);
    auto const widths = numbers(picture, k_bar_width);
    ASSERT_EQ(begins.size(), 1U);
    auto const keys = numbers(picture, "<circle cx=\"([0-9.]+)\"");
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_NEAR(widths[0], (keys[1] - keys[0]) / 2, 1) << "two of the four seconds";
}

TEST(Picture, Shows_texts_as_they_are) {
    EXPECT_THAT(draw({{0, Kind::power_off, "a<b&c"}}), HasSubstr("a&lt;b&amp;c"));
}

}  // namespace
}  // namespace bench::tour
