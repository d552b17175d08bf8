#ifndef TESTS_UNIT_UTILITIES_EXPECT_SYSTEM_ERROR_H
#define TESTS_UNIT_UTILITIES_EXPECT_SYSTEM_ERROR_H

#include <string>
#include <system_error>

#include <gmock/gmock.h>

namespace utilities {

/// The call throws std::system_error with this error number and exactly this text.
template <class Call>
void expect_system_error(int error, std::string const& text, Call call) {
    try {
        call();
        ADD_FAILURE() << "nothing was thrown";
    } catch (std::system_error const& thrown) {
        EXPECT_EQ(thrown.code().value(), error) << thrown.what();
        EXPECT_STREQ(thrown.what(), std::system_error(error, std::generic_category(), text).what());
    }
}

}  // namespace utilities

#endif
