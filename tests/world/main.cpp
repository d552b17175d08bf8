#include "bench/vehicle/world.h"
#include "fail_by_unasked_ends.h"

#include <cstdio>
#include <cstring>
#include <exception>

#include <gtest/gtest.h>

namespace {

bool only_lists(int argc, char** argv) {
    for (int word = 1; word < argc; ++word) {
        if (std::strncmp(argv[word], "--gtest_list_tests", 18) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

// The tests run as the first process of a world of their own.
int main(int argc, char** argv) {
    auto const run = [&argc, argv] {
        testing::InitGoogleTest(&argc, argv);
        fail_by_unasked_ends();
        return RUN_ALL_TESTS();
    };
    if (only_lists(argc, argv)) {
        return run();
    }
    try {
        return bench::vehicle::run_inside(PROJECT, run);
    } catch (std::exception const& error) {
        std::printf("No test can run here. %s\n", error.what());
        return EXIT_FAILURE;
    }
}
