#ifndef TESTS_WORLD_FAIL_BY_UNASKED_ENDS_H
#define TESTS_WORLD_FAIL_BY_UNASKED_ENDS_H

#include "bench/process/unasked_end.h"

#include <string>

#include <gtest/gtest.h>

/// A program that comes to an end that nobody has asked for fails the test that started it.
inline void fail_by_unasked_ends() {
    bench::hear_unasked_ends([](std::string const& what) { ADD_FAILURE() << what; });
}

#endif
