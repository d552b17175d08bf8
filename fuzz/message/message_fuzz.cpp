// Messages made of any bytes, in one piece from a socket and in pieces through the assembler: both take the same
// messages and refuse the same ones, with no other exceptions than those that they promise, and what was taken encodes
// to the bytes that it came from.
//
// The first byte gives the sizes of the pieces; the others are the stream.
#include "require.h"
#include "utilities/frame_assembler.h"
#include "utilities/messages.h"

#include <algorithm>
#include <cstring>

#include <sys/socket.h>

namespace {

using fuzz::require;
using utilities::Bytes;
using utilities::Frame_assembler;
using utilities::Type_length_values;

constexpr std::size_t k_longest_stream = 65'536;  // what a socket's buffer takes without a reader

enum class End { unfinished, too_long, malformed };

/// What became of one stream: the messages in front, and why there were no more.
struct Reading {
    std::vector<Type_length_values> messages;
    End end{End::unfinished};
};

bool operator==(Reading const& left, Reading const& right) {
    return left.messages == right.messages && left.end == right.end;
}

End end_of(std::out_of_range const& error) {
    require(std::strcmp(error.what(), utilities::k_end_of_data) == 0);
    return End::malformed;
}

Reading read_in_pieces(Bytes const& stream, std::size_t piece) {
    Reading reading;
    Frame_assembler sut;
    try {
        for (std::size_t at = 0; at < stream.size(); at += piece) {
            sut.append(stream.data() + at, std::min(piece, stream.size() - at));
            while (auto message = sut.take()) {
                reading.messages.push_back(*message);
            }
        }
    } catch (utilities::Exception_frame_too_long const&) {
        reading.end = End::too_long;
    } catch (std::out_of_range const& error) {
        reading.end = end_of(error);
    }
    return reading;
}

/// From a socket whose other end has written the stream and closed. Here a length that is too big shows as a message
/// that never ends.
Reading read_from_socket(Bytes const& stream) {
    auto [near, far] = utilities::socket_pair();
    far.sendl(stream.data(), stream.size(), 0);
    far = utilities::Socket();
    Reading reading;
    try {
        for (;;) {
            reading.messages.push_back(utilities::receive_type_length_values(near));
        }
    } catch (utilities::ExceptionSocketClosed const&) {
        reading.end = End::unfinished;
    } catch (std::out_of_range const& error) {
        reading.end = end_of(error);
    }
    return reading;
}

/// Types of the outer frames aside, which nobody looks at.
void check_encoding(Reading const& reading, Bytes const& stream) {
    std::size_t at = 0;
    for (auto const& message : reading.messages) {
        Bytes const encoded = utilities::serialize(message);
        require(stream.size() - at >= encoded.size());
        require(std::equal(encoded.begin() + 4, encoded.end(), stream.data() + at + 4));
        at += encoded.size();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    Bytes const stream(data + 1, data + std::min(size, k_longest_stream));
    Reading const whole = read_in_pieces(stream, std::max<std::size_t>(stream.size(), 1));
    require(read_in_pieces(stream, data[0] % 64U + 1U) == whole);
    Reading from_socket = read_from_socket(stream);
    if (whole.end == End::too_long) {
        require(from_socket.end == End::unfinished);
        from_socket.end = End::too_long;
    }
    require(from_socket == whole);
    check_encoding(whole, stream);
    return 0;
}
