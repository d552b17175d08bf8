#include "losses.h"

#include "bench/json_lines/clock.h"
#include "words.h"

namespace soak {

namespace {

constexpr std::int64_t k_until_found = 3 * k_ns_per_s;

}  // namespace

void Losses::lose() {
    note();
    lossy_until_ = bench::monotonic_ns() + k_until_found;
}

void Losses::hear_state_word(std::string const& word) {
    if (word == "resuming" && lost_ == Lost::something && bench::monotonic_ns() > lossy_until_) {
        lost_ = Lost::until_resumed;
    } else if (word == "running" && lost_ == Lost::until_resumed) {
        lost_ = Lost::releases;
    }
}

}  // namespace soak
