#ifndef FUZZ_REQUIRE_H
#define FUZZ_REQUIRE_H

#include <cstdlib>

namespace fuzz {

/// What holds whatever the input is; otherwise the target has found something.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

}  // namespace fuzz

#endif
