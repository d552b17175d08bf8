#include "fail_by_unasked_ends.h"

#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    fail_by_unasked_ends();
    return RUN_ALL_TESTS();
}
