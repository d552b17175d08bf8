#include "dlt_bytes.h"

#include <algorithm>

namespace trace_test {

namespace {

std::string id(std::string text) {
    text.resize(4, '\0');
    return text;
}

std::string message(unsigned type, Words const& words, std::string const& payload, std::size_t count) {
    std::string header;
    header += id("ECU1") + big(words.process, 4) + big(static_cast<std::uint64_t>(words.time * 10'000 + 0.5), 4);
    header += static_cast<char>(words.level << 4 | 1);
    header += static_cast<char>(count);
    header += id(words.application) + id("DFLT");
    auto const length = 4 + header.size() + payload.size();
    return std::string(1, static_cast<char>(type)) + '\0' + big(length, 2) + header + payload;
}

}  // namespace

std::string little(std::uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
    return bytes;
}

std::string big(std::uint64_t value, int size) {
    auto bytes = little(value, size);
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

std::string bytes_of(Words const& words, Framing framing) {
    std::string payload;
    for (auto const& argument : words.arguments) {
        payload += little(0x200, 4) + little(argument.size() + 1, 2) + argument + '\0';
    }
    auto const bare = message(0x3D, words, payload, words.arguments.size());
    switch (framing) {
        case Framing::storage:
            return "DLT\x01" + little(static_cast<std::uint64_t>(words.stored), 4) + little(250'000, 4) + id("ECU1") +
                   bare;
        case Framing::serial:
            return "DLS\x01" + bare;
        case Framing::none:
            break;
    }
    return bare;
}

std::string bytes_of_argument(std::string const& argument, bool is_big_endian) {
    return "DLS\x01" + message(is_big_endian ? 0x3F : 0x3D, {}, argument, 1);
}

}  // namespace trace_test
