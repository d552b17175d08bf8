// text_sink.cpp calls this on the thread of the queue's consumer for each message that it writes: `decode_arguments`,
// then `to_text`. An argument is its type, the length if it is text or bytes, and its value.

#include "ara/log/argument_decoder.h"

#include "ara/log/argument_encoder.h"
#include "base/hex.h"

#include <cstring>
#include <optional>

namespace ara::log {

namespace {

class Reader {
 public:
    Reader(char const* data, std::size_t size) : data_(data), left_(size) {}

    bool at_end() const { return left_ == 0; }

    template <class Value>
    std::optional<Value> take() {
        Value value{};
        if (left_ < sizeof value) {
            return std::nullopt;
        }
        std::memcpy(&value, data_, sizeof value);
        skip(sizeof value);
        return value;
    }

    std::optional<std::string> take_bytes(std::size_t size) {
        if (left_ < size) {
            return std::nullopt;
        }
        std::string bytes(data_, size);
        skip(size);
        return bytes;
    }

 private:
    void skip(std::size_t size) {
        data_ += size;
        left_ -= size;
    }

    char const* data_;
    std::size_t left_;
};

template <class Target, class Value>
std::optional<Argument> widened(std::optional<Value> value) {
    return value ? std::optional<Argument>(static_cast<Target>(*value)) : std::nullopt;
}

std::optional<Argument> take_number(Reader& reader, std::uint32_t info) {
    bool const is_signed = (info & type_info::k_signed) != 0;
    switch (info & type_info::k_length_mask) {
        case 1:
            return is_signed ? widened<std::int64_t>(reader.take<std::int8_t>())
                             : widened<std::uint64_t>(reader.take<std::uint8_t>());
        case 2:
            return is_signed ? widened<std::int64_t>(reader.take<std::int16_t>())
                             : widened<std::uint64_t>(reader.take<std::uint16_t>());
        case 3:
            return is_signed ? widened<std::int64_t>(reader.take<std::int32_t>())
                             : widened<std::uint64_t>(reader.take<std::uint32_t>());
        case 4:
            return is_signed ? widened<std::int64_t>(reader.take<std::int64_t>())
                             : widened<std::uint64_t>(reader.take<std::uint64_t>());
        default:
            return std::nullopt;
    }
}

std::optional<Argument> take_variable(Reader& reader, bool is_text) {
    auto const length = reader.take<std::uint16_t>();
    auto bytes = length ? reader.take_bytes(*length) : std::nullopt;
    if (!bytes) {
        return std::nullopt;
    }
    if (!is_text) {
        return Argument(std::vector<std::uint8_t>(bytes->begin(), bytes->end()));
    }
    if (!bytes->empty()) {
        bytes->pop_back();  // the terminator
    }
    return Argument(std::move(*bytes));
}

std::optional<Argument> take_argument(Reader& reader) {
    auto const info = reader.take<std::uint32_t>().value_or(0);
    if ((info & type_info::k_bool) != 0) {
        auto const value = reader.take<std::uint8_t>();
        return value ? std::optional<Argument>(*value != 0) : std::nullopt;
    }
    if ((info & (type_info::k_signed | type_info::k_unsigned)) != 0) {
        return take_number(reader, info);
    }
    if ((info & (type_info::k_string | type_info::k_raw)) != 0) {
        return take_variable(reader, (info & type_info::k_string) != 0);
    }
    return std::nullopt;
}

struct To_text {
    std::string operator()(std::string const& text) const { return text; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(std::uint64_t value) const { return std::to_string(value); }
    std::string operator()(std::vector<std::uint8_t> const& bytes) const { return base::to_hex(bytes, "'"); }
};

}  // namespace

std::vector<Argument> decode_arguments(char const* data, std::size_t size) {
    std::vector<Argument> arguments;
    Reader reader(data, size);
    while (!reader.at_end()) {
        auto argument = take_argument(reader);
        if (!argument) {
            break;
        }
        arguments.push_back(std::move(*argument));
    }
    return arguments;
}

std::string to_text(std::vector<Argument> const& arguments) {
    std::string line;
    for (auto const& argument : arguments) {
        line += line.empty() ? "" : " ";
        line += std::visit(To_text{}, argument);
    }
    return line;
}

}  // namespace ara::log
