#include "utilities/messages.h"

#include "utilities/serialization.h"

#include <algorithm>

namespace utilities {

namespace {

constexpr std::uint64_t k_piece = 65'536;  // bytes; what a length that is a lie can make us allocate

Bytes receive_bytes(Socket const& socket, std::uint64_t length) {
    Bytes bytes;
    while (bytes.size() < length) {
        std::size_t const before = bytes.size();
        bytes.resize(before + static_cast<std::size_t>(std::min(k_piece, length - before)));
        socket.recvl(bytes.data() + before, bytes.size() - before, 0);
    }
    return bytes;
}

}  // namespace

void send_type_length_values(Socket const& socket, Type_length_values const& list) {
    Bytes const bytes = serialize(list);
    socket.sendl(bytes.data(), bytes.size(), 0);
}

Type_length_values receive_type_length_values(Socket const& socket) {
    std::uint32_t type = 0;
    std::uint64_t length = 0;
    socket.recvl(&type, sizeof type, 0);
    socket.recvl(&length, sizeof length, 0);
    Bytes const bytes = receive_bytes(socket, length);
    auto iterator = bytes.begin();
    return deserialize_vector(length, iterator, bytes.end());
}

}  // namespace utilities
