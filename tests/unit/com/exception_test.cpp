#include "tarq/com/exception.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace tarq::com {
namespace {

TEST(Exception, A_service_that_is_not_there_has_its_text) {
    EXPECT_STREQ(Service_not_available_exception().what(), "Service not available exception");
}

TEST(Exception, All_failures_of_calls_are_infrastructure_exceptions) {
    EXPECT_THROW(throw Service_not_available_exception(), Infrastructure_exception);
    EXPECT_THROW(throw Timeout_exception("late"), Infrastructure_exception);
    EXPECT_THROW(throw Remote_exception(Remote_exception_code::kUnknownException), Infrastructure_exception);
}

TEST(Exception, Each_code_of_a_server_has_a_text_of_its_own) {
    std::set<std::string> texts;
    for (std::int32_t code = 0; code <= 5; ++code) {
        Remote_exception const sut(static_cast<Remote_exception_code>(code));
        EXPECT_EQ(static_cast<std::int32_t>(sut.code()), code);
        texts.insert(sut.what());
    }
    EXPECT_EQ(texts.size(), 6U);
}

TEST(Exception, A_code_that_is_not_known_has_a_text) {
    EXPECT_STREQ(Remote_exception(static_cast<Remote_exception_code>(77)).what(),
                 "The service answered with a code that is not known");
}

}  // namespace
}  // namespace tarq::com
