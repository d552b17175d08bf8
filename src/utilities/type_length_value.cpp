#include "utilities/type_length_value.h"

#include "utilities/serialization.h"

#include <cstring>
#include <stdexcept>

namespace utilities {

Type_length_value::Type_length_value(std::uint32_t number) : type_(Payload_type::uint32), value_(sizeof number) {
    std::memcpy(value_.data(), &number, sizeof number);
}

std::uint32_t Type_length_value::get_uint32() const {
    std::uint32_t number = 0;
    if (value_.size() < sizeof number) {
        throw std::out_of_range(k_end_of_data);
    }
    std::memcpy(&number, value_.data(), sizeof number);
    return number;
}

}  // namespace utilities
