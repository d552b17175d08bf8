// The arguments of a log message: any bytes are taken apart without harm, and what was encoded comes back as it was, or
// cut, and then the message says so.
//
// A script of arguments: a byte for the kind, and the bytes that it needs.
//
//     0 boolean   1 to 8 a number of 8 to 64 bits, unsigned or signed   9 text: count, bytes   10 bytes: count, bytes
#include "ara/log/argument_decoder.h"
#include "ara/log/argument_encoder.h"
#include "require.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using ara::log::Argument;
using ara::log::Argument_encoder;
using fuzz::require;

/// Encodes what a script says, and keeps what was meant.
class Script {
 public:
    Script(std::uint8_t const* data, std::size_t size) : next_(data), end_(data + size) {}

    void play() {
        while (next_ != end_) {
            step();
        }
        encoder.finish();
    }

    Argument_encoder encoder;
    std::vector<Argument> meant;
    std::size_t bytes{0};  ///< of all that was meant

 private:
    void step() {
        switch (take<std::uint8_t>() % 11) {
            case 0:
                return add_bool((take<std::uint8_t>() & 1U) != 0);
            case 1:
                return add_number<std::uint64_t>(take<std::uint8_t>());
            case 2:
                return add_number<std::uint64_t>(take<std::uint16_t>());
            case 3:
                return add_number<std::uint64_t>(take<std::uint32_t>());
            case 4:
                return add_number<std::uint64_t>(take<std::uint64_t>());
            case 5:
                return add_number<std::int64_t>(take<std::int8_t>());
            case 6:
                return add_number<std::int64_t>(take<std::int16_t>());
            case 7:
                return add_number<std::int64_t>(take<std::int32_t>());
            case 8:
                return add_number<std::int64_t>(take<std::int64_t>());
            case 9:
                return add_text(take_bytes());
            default:
                return add_bytes(take_bytes());
        }
    }

    void add_bool(bool value) {
        encoder.add_bool(value);
        bytes += sizeof value;
        meant.emplace_back(value);
    }
    template <class Wide, class Number>
    void add_number(Number value) {
        encoder.add_number(value);
        bytes += sizeof value;
        meant.emplace_back(static_cast<Wide>(value));
    }
    void add_text(std::string const& text) {
        encoder.add_text(text);
        bytes += text.size();
        meant.emplace_back(text);
    }
    void add_bytes(std::string const& text) {
        std::vector<std::uint8_t> const octets(text.begin(), text.end());
        encoder.add_bytes(octets.data(), octets.size());
        bytes += octets.size();
        meant.emplace_back(octets);
    }

    template <class Value>
    Value take() {
        Value value{};
        auto const count = std::min<std::size_t>(sizeof value, static_cast<std::size_t>(end_ - next_));
        std::memcpy(&value, next_, count);
        next_ += count;
        return value;
    }
    // Up to sixteen times as long as the script says, so that short scripts fill a message.
    std::string take_bytes() {
        auto const size = take<std::uint8_t>();
        auto const count = std::min<std::size_t>(size, static_cast<std::size_t>(end_ - next_));
        std::string const piece(next_, next_ + count);
        next_ += count;
        std::string all;
        for (unsigned times = 0; times <= size % 16U; ++times) {
            all += piece;
        }
        return all;
    }

    std::uint8_t const* next_;
    std::uint8_t const* end_;
};

// The bytes of values that an encoded message carries: all without the type and length of each, and the ends of texts.
std::size_t carried_by(char const* data, std::size_t size) {
    std::size_t carried = 0;
    for (auto const* next = data; next != data + size;) {
        std::uint32_t info = 0;
        std::memcpy(&info, next, sizeof info);
        next += sizeof info;
        std::size_t length = std::size_t{1} << ((info & 15U) - 1) % 4;
        bool const is_text = (info & ara::log::type_info::k_string) != 0;
        if (is_text || (info & ara::log::type_info::k_raw) != 0) {
            std::uint16_t told = 0;
            std::memcpy(&told, next, sizeof told);
            next += sizeof told;
            length = told;
        }
        carried += is_text ? length - 1 : length;
        next += length;
    }
    return carried;
}

std::size_t bytes_in(Argument const& argument) {
    if (auto const* const text = std::get_if<std::string>(&argument)) {
        return text->size();
    }
    auto const* const bytes = std::get_if<std::vector<std::uint8_t>>(&argument);
    return bytes != nullptr ? bytes->size() : 0;
}

bool is_empty(Argument const& argument) {
    return argument == Argument(std::string()) || argument == Argument(std::vector<std::uint8_t>());
}

// Whether a message has no room for an empty text: what is encoded leaves 48 bytes for the note, and such a text
// takes 7.
bool is_full(Argument_encoder const& encoder) {
    return encoder.size() + 7 > Argument_encoder::k_capacity - 48 || encoder.count() == 254;
}

// Whether all that was meant has come back, but empty arguments that a full message had no room for.
bool is_whole(std::vector<Argument> const& decoded, std::vector<Argument> const& meant, bool full) {
    auto next = decoded.begin();
    for (auto const& argument : meant) {
        if (next != decoded.end() && argument == *next) {
            ++next;
        } else if (!full || !is_empty(argument)) {
            return false;
        }
    }
    return next == decoded.end();
}

// Whether one is the beginning of the other.
bool begins(Argument const& part, Argument const& whole) {
    if (auto const* const text = std::get_if<std::string>(&part)) {
        auto const* const all = std::get_if<std::string>(&whole);
        return all != nullptr && all->compare(0, text->size(), *text) == 0;
    }
    auto const* const bytes = std::get_if<std::vector<std::uint8_t>>(&part);
    auto const* const all = std::get_if<std::vector<std::uint8_t>>(&whole);
    return bytes != nullptr && all != nullptr && bytes->size() <= all->size() &&
           std::equal(bytes->begin(), bytes->end(), all->begin());
}

void require_that_what_was_encoded_comes_back(std::uint8_t const* data, std::size_t size) {
    Script script(data, size);
    script.play();
    require(script.encoder.size() <= Argument_encoder::k_capacity);
    auto decoded = ara::log::decode_arguments(script.encoder.data(), script.encoder.size());
    require(decoded.size() == script.encoder.count());
    ara::log::to_text(decoded);
    if (is_whole(decoded, script.meant, is_full(script.encoder))) {
        return;
    }
    require(!decoded.empty());
    auto const* const note = std::get_if<std::string>(&decoded.back());
    require(note != nullptr && note->size() > 12 && note->front() == '[' &&
            note->compare(note->size() - 11, 11, " bytes cut]") == 0);
    auto const carried = carried_by(script.encoder.data(), script.encoder.size()) - note->size();
    require(note->substr(1, note->size() - 12) == std::to_string(script.bytes - carried));
    decoded.pop_back();
    auto meant = script.meant.begin();
    for (auto const& argument : decoded) {
        // An empty one that has no room leaves nothing to be told of.
        while (meant != script.meant.end() && argument != *meant && is_empty(*meant)) {
            ++meant;
        }
        require(meant != script.meant.end());
        require(argument == *meant || (&argument == &decoded.back() && begins(argument, *meant)));
        ++meant;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::vector<char> const bytes(data, data + size);
    std::size_t carried = 0;
    for (auto const& argument : ara::log::decode_arguments(bytes.data(), bytes.size())) {
        carried += bytes_in(argument);
    }
    require(carried <= size);
    require_that_what_was_encoded_comes_back(data, size);
    return 0;
}
