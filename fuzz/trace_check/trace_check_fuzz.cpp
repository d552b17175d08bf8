// Traces of any bytes, held against the rules: they are refused with one sentence, or each life in them has a verdict,
// which says where and why unless it agrees, and counts no more steps than there are messages.
#include "require.h"
#include "simulation/trace_check.h"
#include "simulation/trace_life.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

using fuzz::require;

namespace {

void require_verdict(simulation::Trace_life const& life) {
    auto const verdict = simulation::check_as_told(life);
    bool const agrees = verdict.kind == simulation::Trace_verdict::Kind::agrees;
    require(agrees == verdict.text.empty());
    require(verdict.steps <= life.size());
    require(!simulation::text_of(verdict).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::vector<simulation::Trace_life> lives;
    try {
        lives = simulation::lives_of({reinterpret_cast<char const*>(data), size}).lives;
    } catch (std::runtime_error const& error) {
        require(!std::string_view(error.what()).empty());
        return 0;
    }
    for (auto const& life : lives) {
        require(!life.empty());
        require_verdict(life);
    }
    return 0;
}
