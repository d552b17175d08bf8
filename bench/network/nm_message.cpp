#include "bench/network/nm_message.h"

namespace bench::network {

namespace {

constexpr std::size_t k_header = 2;

}  // namespace

Bits encode(Nm_message const& message) {
    Bits bytes{message.node, message.control};
    bytes.insert(bytes.end(), message.requests.begin(), message.requests.end());
    bytes.insert(bytes.end(), message.user_data.begin(), message.user_data.end());
    return bytes;
}

std::optional<Nm_message> decode(Bits const& bytes, std::size_t request_bytes) {
    if (bytes.size() < k_header) {
        return std::nullopt;
    }
    Nm_message message{bytes[0], bytes[1], {}, {}};
    auto const carried = message.has(Control_bit::partial_network) ? request_bytes : 0;
    if (bytes.size() < k_header + carried || bytes.size() > k_header + carried + k_most_user_data) {
        return std::nullopt;
    }
    auto const requests = bytes.begin() + k_header;
    auto const user_data = requests + static_cast<std::ptrdiff_t>(carried);
    message.requests.assign(requests, user_data);
    message.user_data.assign(user_data, bytes.end());
    return message;
}

}  // namespace bench::network
