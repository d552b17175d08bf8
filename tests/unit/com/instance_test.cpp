#include "ara/com/instance.h"

#include "tarq/com/exception.h"

#include <string>

#include <gmock/gmock.h>

namespace ara::com {
namespace {

using tarq::com::Invalid_argument_exception;

class Refused_names : public testing::TestWithParam<std::string> {};

TEST_P(Refused_names, Are_neither_identifiers_nor_specifiers) {
    EXPECT_THROW(InstanceIdentifier{GetParam()}, Invalid_argument_exception);
    EXPECT_THROW(InstanceSpecifier{GetParam()}, Invalid_argument_exception);
}

INSTANTIATE_TEST_SUITE_P(Instance, Refused_names,
                         testing::Values("", " a", "a ", " ", "a\n", "\ta", std::string("a\0b", 3), "a\x7f", "a*", "a?",
                                         "[a", "a]", "a\\b", "a,b", std::string(129, 'a')));

class Accepted_names : public testing::TestWithParam<std::string> {};

TEST_P(Accepted_names, Are_kept_as_they_are) {
    EXPECT_EQ(InstanceIdentifier(GetParam()).ToString(), GetParam());
    EXPECT_EQ(InstanceSpecifier(GetParam()).ToString(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Instance, Accepted_names,
                         testing::Values("a", "DSA_Interface", "a b", "a/b", "a.b-c:d", "\xc3\xa4", "1",
                                         std::string(128, 'a')));

TEST(Instance, A_star_is_any_instance_and_the_name_of_none) {
    EXPECT_THROW(InstanceIdentifier("*"), Invalid_argument_exception);
    EXPECT_TRUE(InstanceSpecifier("*").matches(InstanceIdentifier("a")));
    EXPECT_TRUE(InstanceSpecifier("*").matches(InstanceIdentifier("b")));
}

TEST(Instance, A_specifier_that_is_a_name_matches_that_name_only) {
    EXPECT_TRUE(InstanceSpecifier("a").matches(InstanceIdentifier("a")));
    EXPECT_FALSE(InstanceSpecifier("a").matches(InstanceIdentifier("ab")));
    EXPECT_FALSE(InstanceSpecifier("ab").matches(InstanceIdentifier("a")));
}

TEST(Instance, Identifiers_are_ordered_by_their_names) {
    EXPECT_LT(InstanceIdentifier("a"), InstanceIdentifier("b"));
    EXPECT_EQ(InstanceIdentifier("a"), InstanceIdentifier("a"));
}

TEST(Instance, A_refusal_says_what_is_wrong) {
    try {
        InstanceIdentifier const sut("");
        FAIL() << sut.ToString();
    } catch (Invalid_argument_exception const& error) {
        EXPECT_STREQ(error.what(), "Not an instance identifier: the name is empty");
    }
}

}  // namespace
}  // namespace ara::com
