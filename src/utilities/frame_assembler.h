#ifndef UTILITIES_FRAME_ASSEMBLER_H
#define UTILITIES_FRAME_ASSEMBLER_H

#include "utilities/serialization.h"

#include <cstddef>
#include <optional>
#include <stdexcept>

namespace utilities {

/// A message is announced that is longer than is taken from a peer.
class Exception_frame_too_long : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// Makes messages out of bytes as they arrive, in pieces of any size, for a reader that must not wait for the rest of
/// a message.
///
///     assembler.append(bytes, count);
///     while (auto message = assembler.take()) { ... }
class Frame_assembler {
 public:
    /// Longest value of the outer frame that is taken, in bytes.
    static constexpr std::uint64_t k_longest = 65'536;

    /// Keeps no more memory than the longest message takes, when whole messages are taken in between.
    void append(std::uint8_t const* bytes, std::size_t count);

    /// The next message, or nothing while it is not all there. Throws Exception_frame_too_long as soon as such a
    /// length is announced, and std::out_of_range for elements that don't fill the frame. After that the rest of the
    /// stream has no meaning.
    std::optional<Type_length_values> take();

    /// The same into a message that is there, see deserialize_vector; false while it is not all there.
    bool take(Type_length_values& message);

 private:
    void forget_taken();

    Bytes pending_;
    std::size_t taken_{0};  ///< bytes at the front of `pending_` that have been handed out
};

}  // namespace utilities

#endif
