#include "script.h"

#include "draws.h"

#include <set>

#include <gtest/gtest.h>

namespace soak {
namespace {

TEST(Script, Is_the_same_for_the_same_seed_everywhere) {
    Draws draws(12);
    std::vector<unsigned> numbers;
    for (int count = 0; count < 6; ++count) {
        numbers.push_back(draws.below(1'000'000));
    }
    EXPECT_EQ(numbers, (std::vector<unsigned>{579101, 939463, 234738, 904839, 852165, 294124}));
    EXPECT_EQ(text_of(drawn(12)), text_of(drawn(12)));
    EXPECT_NE(text_of(drawn(12)), text_of(drawn(13)));
}

TEST(Script, Is_read_as_it_was_written) {
    std::set<Verb> verbs;
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        auto const script = drawn(seed);
        auto const again = parsed("# seed " + std::to_string(seed) + "\n\n" + text_of(script));
        EXPECT_EQ(again.settings, script.settings) << seed;
        EXPECT_EQ(again.steps, script.steps) << seed;
        for (auto const& step : script.steps) {
            verbs.insert(step.verb);
        }
    }
    EXPECT_EQ(verbs.size(), static_cast<std::size_t>(Verb::settle) + 1) << "each kind of step is drawn";
}

TEST(Script, That_can_not_be_read_is_told_with_its_line) {
    for (auto const* line : {"key p", "5 key q", "5 key p p", "5", "x key p", "5 stop radio for long",
                             "5 stop radio for", "set A", "12345678 key p"}) {
        try {
            parsed(std::string("# a comment\n5 key p\n") + line);
            ADD_FAILURE() << line;
        } catch (std::invalid_argument const& error) {
            EXPECT_EQ(error.what(), std::string("line 3 is no step: ") + line);
        }
    }
}

}  // namespace
}  // namespace soak
