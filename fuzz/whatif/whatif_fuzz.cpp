// Scripts of any bytes: they are read, or refused with a place inside of them and one sentence, and what was read has a
// configuration, or a setting of it is refused with its line.
#include "require.h"
#include "simulation/configuration.h"
#include "simulation/script.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

using fuzz::require;

namespace {

void require_sentence(std::string const& complaint, std::string_view script) {
    auto const lines = 1 + std::count(script.begin(), script.end(), '\n');
    auto const end_of_line = complaint.find(':');
    require(end_of_line != std::string::npos && std::stol(complaint.substr(0, end_of_line)) <= lines);
    require(complaint.find(": ", end_of_line) != std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    try {
        auto const script = simulation::parse_script(text);
        require(script.end() >= simulation::Time(0));
        require(!simulation::configuration_of(script, std::nullopt).empty());
    } catch (simulation::Script_error const& error) {
        require_sentence(error.what(), text);
    }
    return 0;
}
