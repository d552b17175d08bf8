// The recorder's files with any lines: each is taken or counted as damaged, and whatever they say power cycles are told
// of them, each with one of the endings that there are and in texts that no terminal obeys.
#include "require.h"
#include "tools/record/power_cycles.h"
#include "tools/trace/reports.h"
#include "tools/trace/summary.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using fuzz::require;
using namespace statectl::record;

bool is_known(std::string const& word) {
    constexpr std::array<char const*, 10> k_all{ending::running,   ending::suspended,  ending::resumed,  ending::normal,
                                                ending::fast,      ending::signal,     ending::watchdog, ending::killed,
                                                ending::went_down, ending::no_farewell};
    return std::find(k_all.begin(), k_all.end(), word) != k_all.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Records records;
    std::size_t lines = 0;
    for (std::string_view rest(reinterpret_cast<char const*>(data), size); !rest.empty();) {
        auto const end = std::min(rest.find('\n'), rest.size());
        add_line(records, std::string(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        ++lines;
    }
    finish(records);
    require(records.lines == lines && records.damaged <= lines);
    auto const cycles = power_cycles(records, {"a", {"a", 1, 7, 0}});
    require(cycles.size() >= records.lives.size());
    statectl::trace::Story story;
    for (auto const& cycle : cycles) {
        require(is_known(cycle.ending) && !cycle.told.stays.empty() && cycle.told.begin <= cycle.told.end);
        for (char const character : text_of(cycle.told)) {
            require(character == '\n' || static_cast<unsigned char>(character) >= ' ');
        }
        story.lives.push_back(cycle.told);
    }
    require(html_report(story, "fuzz").find("</html>") != std::string::npos);
    return 0;
}
