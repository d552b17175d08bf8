#include "utilities/frame_assembler.h"

#include <algorithm>
#include <string>
#include <utility>

namespace utilities {

namespace {

constexpr std::size_t k_idle_capacity = 256;  // bytes; room for what most clients send

}  // namespace

// Grows by doubling, as far as an unfinished message can go.
void Frame_assembler::append(std::uint8_t const* bytes, std::size_t count) {
    auto const needed = pending_.size() + count;
    if (needed > pending_.capacity()) {
        pending_.reserve(
            std::max<std::size_t>(needed, std::min<std::size_t>(2 * pending_.capacity(), k_header_size + k_longest)));
    }
    pending_.insert(pending_.end(), bytes, bytes + count);
}

std::optional<Type_length_values> Frame_assembler::take() {
    Type_length_values message;
    return take(message) ? std::optional(std::move(message)) : std::nullopt;
}

bool Frame_assembler::take(Type_length_values& message) {
    auto iterator = pending_.cbegin() + static_cast<Bytes_iterator::difference_type>(taken_);
    auto const end = pending_.cend();
    if (end - iterator < static_cast<Bytes_iterator::difference_type>(k_header_size)) {
        forget_taken();
        return false;
    }
    read_number<std::uint32_t>(iterator, end);  // the outer type: not looked at
    auto const length = read_number<std::uint64_t>(iterator, end);
    if (length > k_longest) {
        throw Exception_frame_too_long("announced message length is too big: " + std::to_string(length));
    }
    if (length > static_cast<std::uint64_t>(end - iterator)) {
        forget_taken();
        return false;
    }
    auto const frame_end = iterator + static_cast<Bytes_iterator::difference_type>(length);
    deserialize_vector(length, iterator, frame_end, message);
    taken_ = static_cast<std::size_t>(frame_end - pending_.cbegin());
    return true;
}

// Keeps what is left of an unfinished message; an idle connection keeps hardly any memory.
void Frame_assembler::forget_taken() {
    if (taken_ == 0) {
        return;
    }
    pending_.erase(pending_.begin(), pending_.begin() + static_cast<Bytes_iterator::difference_type>(taken_));
    taken_ = 0;
    if (pending_.capacity() > k_idle_capacity) {
        pending_.shrink_to_fit();
    }
}

}  // namespace utilities
