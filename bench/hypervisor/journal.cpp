#include "bench/hypervisor/journal.h"

#include "base/hex.h"
#include "bench/json_lines/arguments.h"

#include <algorithm>

namespace bench::hypervisor {

namespace {

using nlohmann::json;

bool readable_text(std::string const& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
}

}  // namespace

json with_error(json details, int error) {
    if (error != 0) {
        details["errno"] = errno_name(error);
    }
    return details;
}

json describe(std::string const& file, Request const& request) {
    json result{{"file", file},
                {"number", request.number},
                {"t", request.time},
                {"offset", request.offset},
                {"text", request.bytes}};
    if (!readable_text(request.bytes)) {
        result["hex"] = base::to_hex(request.bytes, "");
    }
    if (request.error != 0) {
        result["errno"] = errno_name(request.error);
    } else {
        result["written"] = request.accepted;
    }
    if (request.delay.count() > 0) {
        result["delay_ms"] = request.delay.count();
    }
    return result;
}

}  // namespace bench::hypervisor
