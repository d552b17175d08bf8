#include "bench/hypervisor/journal.h"

#include "bench/json_lines/arguments.h"

#include <algorithm>
#include <string_view>

namespace bench::hypervisor {

namespace {

using nlohmann::json;

bool readable_text(std::string const& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
}

std::string hexadecimal(std::string const& bytes) {
    constexpr std::string_view k_digits = "0123456789abcdef";
    std::string text;
    for (char const byte : bytes) {
        auto const value = static_cast<unsigned char>(byte);
        text.push_back(k_digits[value >> 4U]);
        text.push_back(k_digits[value & 15U]);
    }
    return text;
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
        result["hex"] = hexadecimal(request.bytes);
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
