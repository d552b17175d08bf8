// The reader of traces on any bytes: each byte is part of a message or counted as skipped, pieces of any size give the
// same messages, and a story is told of whatever they say.
#include "require.h"
#include "tools/dlt/reader.h"
#include "tools/trace/narrator.h"
#include "tools/trace/reports.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const bytes(reinterpret_cast<char const*>(data), size);
    dlt::Reader reader;
    statectl::trace::Narrator narrator;
    reader.add(bytes);
    reader.end();
    std::size_t count = 0;
    while (auto message = reader.next()) {
        ++count;
        narrator.hear(std::move(*message));
    }
    require(reader.skipped_bytes() + 4 * count <= size);

    auto const story = narrator.end(reader);
    require(story.messages == count);
    require(!text_report(story, true).empty());
    require(json_report(story).is_object());
    require(html_report(story, "fuzz").find("</html>") != std::string::npos);
    return 0;
}
