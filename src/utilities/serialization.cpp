// Who sends calls `serialize` for a whole message. Who receives, frame_assembler.cpp or messages.cpp, reads the header
// of the list and calls `deserialize_vector` for the rest. Nothing is kept, so any thread may call.

#include "utilities/serialization.h"

#include <cstring>
#include <stdexcept>

namespace utilities {

namespace {

constexpr std::size_t k_usual_count = 3;  // elements of most messages; more are as good

template <class Number>
void append_number(Bytes& bytes, Number number) {
    auto const* first = reinterpret_cast<std::uint8_t const*>(&number);
    bytes.insert(bytes.end(), first, first + sizeof number);
}

void append_header(Bytes& bytes, Payload_type type, std::uint64_t length) {
    append_number(bytes, static_cast<std::uint32_t>(type));
    append_number(bytes, length);
}

void append(Bytes& bytes, Type_length_value const& element) {
    append_header(bytes, element.get_type(), element.get_size());
    bytes.insert(bytes.end(), element.get_value().begin(), element.get_value().end());
}

}  // namespace

Bytes serialize(Type_length_value const& element) {
    Bytes bytes;
    bytes.reserve(element.get_total_size());
    append(bytes, element);
    return bytes;
}

Bytes serialize(Type_length_values const& list) {
    std::size_t length = 0;
    for (auto const& element : list) {
        length += element.get_total_size();
    }
    Bytes bytes;
    bytes.reserve(k_header_size + length);
    append_header(bytes, Payload_type::list, length);
    for (auto const& element : list) {
        append(bytes, element);
    }
    return bytes;
}

void advance_with_check(Bytes_iterator& iterator, std::uint64_t count, Bytes_iterator end) {
    if (count > static_cast<std::uint64_t>(end - iterator)) {
        throw std::out_of_range(k_end_of_data);
    }
    iterator += static_cast<Bytes_iterator::difference_type>(count);
}

template <class Number>
Number read_number(Bytes_iterator& iterator, Bytes_iterator end) {
    auto const first = iterator;
    advance_with_check(iterator, sizeof(Number), end);
    Number number = 0;
    std::memcpy(&number, &*first, sizeof number);
    return number;
}
template std::uint32_t read_number(Bytes_iterator&, Bytes_iterator);
template std::uint64_t read_number(Bytes_iterator&, Bytes_iterator);

Type_length_value deserialize_element(Payload_type type, std::uint64_t length, Bytes_iterator& iterator,
                                      Bytes_iterator end) {
    auto const first = iterator;
    advance_with_check(iterator, length, end);
    return {type, Bytes(first, iterator)};
}

Type_length_values deserialize_vector(std::uint64_t length, Bytes_iterator& iterator, Bytes_iterator end) {
    Type_length_values list;
    deserialize_vector(length, iterator, end, list);
    return list;
}

void deserialize_vector(std::uint64_t length, Bytes_iterator& iterator, Bytes_iterator end, Type_length_values& list) {
    auto announced_end = iterator;
    advance_with_check(announced_end, length, end);
    std::size_t count = 0;
    for (; iterator < end; ++count) {
        auto const type = static_cast<Payload_type>(read_number<std::uint32_t>(iterator, end));
        auto const element_length = read_number<std::uint64_t>(iterator, end);
        if (count < list.size()) {
            auto const first = iterator;
            advance_with_check(iterator, element_length, end);
            auto const* const value = first == iterator ? nullptr : &*first;  // there is no byte at the end
            list[count].assign(type, value, value + element_length);
        } else {
            list.reserve(k_usual_count);
            list.push_back(deserialize_element(type, element_length, iterator, end));
        }
    }
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(count), list.end());
}

}  // namespace utilities
