#include "tools/dlt/reader.h"

#include "tools/dlt/payload.h"

#include <algorithm>
#include <utility>

namespace dlt {

namespace {

// What stands before a message: a storage header ("DLT", seconds, microseconds, ECU) or a serial one ("DLS").
constexpr std::string_view k_storage_mark{"DLT\x01"};
constexpr std::string_view k_serial_mark{"DLS\x01"};
constexpr std::size_t k_mark = 4;
constexpr std::size_t k_storage_header = 16;

// The standard header: type, counter, length in network order, and what the type says.
constexpr std::size_t k_standard_header = 4;
constexpr unsigned k_has_extended_header = 0x01;
constexpr unsigned k_is_big_endian = 0x02;
constexpr unsigned k_has_ecu = 0x04;
constexpr unsigned k_has_session = 0x08;
constexpr unsigned k_has_ticks = 0x10;
constexpr unsigned k_version_shift = 5;
constexpr unsigned k_version = 1;

// The extended header: kind and level, number of arguments, application, context.
constexpr std::size_t k_extended_header = 10;
constexpr std::size_t k_id = 4;
constexpr unsigned k_is_verbose = 0x01;
constexpr unsigned k_kind_mask = 0x0E;  // 0 is the log
constexpr unsigned k_level_shift = 4;
constexpr int k_most_verbose = 6;

unsigned byte_at(std::string_view bytes, std::size_t place) {
    return static_cast<unsigned char>(bytes[place]);
}

std::size_t headers_of(unsigned type) {
    return k_standard_header + ((type & k_has_ecu) != 0 ? k_id : 0) + ((type & k_has_session) != 0 ? 4 : 0) +
           ((type & k_has_ticks) != 0 ? 4 : 0) + ((type & k_has_extended_header) != 0 ? k_extended_header : 0);
}

// How long a message says that it is; 0 for what can't be one.
std::size_t length_of(std::string_view message) {
    auto const type = byte_at(message, 0);
    auto const length = std::size_t{byte_at(message, 2)} * 256 + byte_at(message, 3);
    return type >> k_version_shift == k_version && length >= headers_of(type) ? length : 0;
}

bool is_mark(std::string_view bytes) {
    auto const mark = bytes.substr(0, k_mark);
    return mark == k_storage_mark || mark == k_serial_mark;
}

// One pass up to the first of both: a file has but one kind of them.
std::size_t find_mark(std::string_view bytes, std::size_t from) {
    auto place = bytes.find("DL", from);
    while (place != std::string_view::npos && !is_mark(bytes.substr(place))) {
        place = bytes.find("DL", place + 1);
    }
    return place;
}

// Whether what is there breaks off inside of a mark that begins before the end of a message.
bool may_hold_mark(std::string_view bytes, std::size_t end) {
    for (std::size_t length = 1; length < k_mark && length <= bytes.size(); ++length) {
        auto const tail = bytes.substr(bytes.size() - length);
        bool const begins_mark = k_storage_mark.substr(0, length) == tail || k_serial_mark.substr(0, length) == tail;
        if (begins_mark && bytes.size() - length < end) {
            return true;
        }
    }
    return false;
}

std::string id_in(std::string_view field) {
    return std::string(field.substr(0, field.find('\0')));
}

// The ids of a message that is one are readable.
bool has_readable_ids(std::string_view message) {
    auto const type = byte_at(message, 0);
    if ((type & k_has_extended_header) == 0) {
        return true;
    }
    auto const ids = message.substr(headers_of(type) - 2 * k_id, 2 * k_id);
    return std::all_of(ids.begin(), ids.end(),
                       [](char character) { return character == '\0' || (character >= ' ' && character <= '~'); });
}

Message parse(std::string_view bytes) {
    Message message;
    auto const type = byte_at(bytes, 0);
    Cursor header(bytes.substr(k_standard_header), true);
    message.ecu = (type & k_has_ecu) != 0 ? id_in(header.bytes(k_id)) : "";
    if ((type & k_has_session) != 0) {
        message.session = static_cast<std::uint32_t>(header.number(4));
    }
    if ((type & k_has_ticks) != 0) {
        message.ticks = static_cast<std::uint32_t>(header.number(4));
    }
    if ((type & k_has_extended_header) == 0) {
        return message;
    }
    auto const info = static_cast<unsigned>(header.number(1));
    auto const count = header.number(1);
    message.application = id_in(header.bytes(k_id));
    message.context = id_in(header.bytes(k_id));
    if ((info & k_kind_mask) == 0 && (info & k_is_verbose) != 0) {
        message.level = std::min(static_cast<int>(info >> k_level_shift), k_most_verbose);
        message.arguments = arguments_in(Cursor(bytes.substr(headers_of(type)), (type & k_is_big_endian) != 0), count);
    }
    return message;
}

std::int64_t stored_at(std::string_view storage_header) {
    constexpr std::int64_t k_us = 1'000'000;
    Cursor header(storage_header.substr(k_mark), false);
    auto const seconds = static_cast<std::int64_t>(header.number(4));
    return seconds * k_us + static_cast<std::int64_t>(header.number(4));
}

}  // namespace

/// What begins at the place.
struct Reader::Frame {
    enum class Kind { message, part, none } kind;
    std::size_t prefix;  ///< bytes before the message
    std::size_t length;  ///< of the message; of what is none, how much to skip
};

void Reader::add(std::string_view bytes) {
    waiting_.erase(0, place_);
    forgotten_ += place_;
    place_ = 0;
    waiting_.append(bytes);
}

void Reader::end() {
    has_ended_ = true;
}

Reader::Frame Reader::look() const {
    auto const rest = std::string_view(waiting_).substr(place_);
    if (rest.size() < k_mark) {
        return {Frame::Kind::part, 0, rest.size()};
    }
    if (is_mark(rest)) {
        return marked_frame();
    }
    if (framing_ != Framing::marked) {
        return bare_frame();
    }
    auto const next = find_mark(rest, 0);
    // The last bytes may be the beginning of a mark.
    return {Frame::Kind::none, 0, next == std::string_view::npos ? rest.size() - (has_ended_ ? 0 : k_mark - 1) : next};
}

Reader::Frame Reader::marked_frame() const {
    auto const rest = std::string_view(waiting_).substr(place_);
    auto const prefix = rest.substr(0, k_mark) == k_storage_mark ? k_storage_header : k_mark;
    bool const is_told = rest.size() >= prefix + k_standard_header;
    auto const length = is_told ? length_of(rest.substr(prefix)) : 0;
    if (is_told && length == 0) {
        return {Frame::Kind::none, 0, k_mark};
    }
    auto const end = is_told ? prefix + length : prefix + k_standard_header;
    auto const next = find_mark(rest.substr(0, end + k_mark - 1), k_mark);
    bool const is_whole = is_told && rest.size() >= end;
    if (is_whole && !has_ended_ && may_hold_mark(rest, end)) {
        return {Frame::Kind::part, prefix, rest.size()};
    }
    // A mark inside is that of the next message, unless what follows this one is in order.
    bool const is_followed = is_whole && (rest.size() == end || is_mark(rest.substr(end)));
    if (next < end && !is_followed) {
        return {Frame::Kind::none, 0, next};
    }
    return {is_whole ? Frame::Kind::message : Frame::Kind::part, prefix, is_whole ? length : rest.size()};
}

Reader::Frame Reader::bare_frame() const {
    auto const rest = std::string_view(waiting_).substr(place_);
    auto const length = length_of(rest);
    bool const are_headers_there = length != 0 && rest.size() >= headers_of(byte_at(rest, 0));
    bool const is_whole = length != 0 && rest.size() >= length;
    if (length == 0 || (are_headers_there && !has_readable_ids(rest)) ||
        find_mark(rest.substr(0, length), 0) < length) {
        return {Frame::Kind::none, 0, 1};
    }
    return {is_whole ? Frame::Kind::message : Frame::Kind::part, 0, is_whole ? length : rest.size()};
}

void Reader::skip(std::size_t bytes) {
    gap_ = gap_.value_or(forgotten_ + place_);
    skipped_ += bytes;
    place_ += bytes;
}

std::optional<Message> Reader::next() {
    while (place_ < waiting_.size()) {
        auto const frame = look();
        if (frame.kind == Frame::Kind::part && !has_ended_) {
            return std::nullopt;
        }
        if (frame.kind != Frame::Kind::message) {
            is_cut_ = is_cut_ || frame.kind == Frame::Kind::part;
            if (frame.length == 0) {
                return std::nullopt;
            }
            skip(frame.length);
            continue;
        }
        auto const whole = std::string_view(waiting_).substr(place_, frame.prefix + frame.length);
        auto message = parse(whole.substr(frame.prefix));
        if (frame.prefix == k_storage_header) {
            message.stored_us = stored_at(whole);
            message.ecu = message.ecu.empty() ? id_in(whole.substr(k_storage_header - k_id, k_id)) : message.ecu;
        }
        framing_ = frame.prefix == 0 ? Framing::bare : Framing::marked;
        place_ += whole.size();
        message.gap = std::exchange(gap_, std::nullopt);
        return message;
    }
    return std::nullopt;
}

std::string text_of(Message const& message) {
    std::string text;
    for (auto const& argument : message.arguments) {
        text += (text.empty() ? "" : " ") + argument;
    }
    return text;
}

}  // namespace dlt
