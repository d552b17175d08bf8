#ifndef UTILITIES_TYPE_LENGTH_VALUE_H
#define UTILITIES_TYPE_LENGTH_VALUE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace utilities {

/// What a value is, as on the wire. Values that are none of these are carried as they are.
enum class Payload_type : std::uint32_t {
    string = 0,  ///< the characters, no terminator
    uint32 = 1,  ///< 4 bytes in the order of the host
    list = 2,    ///< encoded elements, one after the other; only the outer frame of a message
};

/// Bytes of a header: 4 of the type and 8 of the value's length.
constexpr std::size_t k_header_size = 12;

/// One element of a message: a type and the bytes of its value.
class Type_length_value {
 public:
    Type_length_value(Payload_type type, std::vector<std::uint8_t> value) : type_(type), value_(std::move(value)) {}
    explicit Type_length_value(std::string_view text) : type_(Payload_type::string), value_(text.begin(), text.end()) {}
    explicit Type_length_value(std::uint32_t number);

    /// Becomes another element, in the memory that it has.
    void assign(Payload_type type, std::uint8_t const* begin, std::uint8_t const* end) {
        type_ = type;
        value_.assign(begin, end);
    }

    Payload_type get_type() const { return type_; }
    std::size_t get_size() const { return value_.size(); }
    std::vector<std::uint8_t> const& get_value() const { return value_; }
    std::size_t get_total_size() const { return value_.size() + k_header_size; }

    /// The bytes of the value as text, whatever the type says.
    std::string get_string() const { return {value_.begin(), value_.end()}; }

    /// The first 4 bytes of the value as a number, whatever the type says; fewer throw std::out_of_range.
    std::uint32_t get_uint32() const;

 private:
    Payload_type type_;
    std::vector<std::uint8_t> value_;
};

using Type_length_values = std::vector<Type_length_value>;

inline bool operator==(Type_length_value const& left, Type_length_value const& right) {
    return left.get_type() == right.get_type() && left.get_value() == right.get_value();
}
inline bool operator!=(Type_length_value const& left, Type_length_value const& right) {
    return !(left == right);
}

}  // namespace utilities

#endif
