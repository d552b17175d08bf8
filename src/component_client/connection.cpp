#include "component_client/connection.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <sys/socket.h>

namespace component_client {

namespace {

constexpr std::size_t k_read_size = 4096;
constexpr int k_most_reads = 64;  // of one turn, so that a peer that never stops sending doesn't hold the caller

}  // namespace

void Connection::queue(utilities::Type_length_values const& message) {
    auto const bytes = utilities::serialize(message);
    unsent_.insert(unsent_.end(), bytes.begin(), bytes.end());
}

void Connection::flush() {
    while (!unsent_.empty()) {
        auto const sent = ::send(socket_.get_fd(), unsent_.data(), unsent_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            unsent_.erase(unsent_.begin(), unsent_.begin() + sent);
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "The connection is lost");
        }
    }
}

std::vector<Wire_request> Connection::receive() {
    for (int reads = 0; reads < k_most_reads && receive_bytes(); ++reads) {
    }
    std::vector<Wire_request> requests;
    while (auto const message = assembler_.take()) {
        requests.push_back({message->at(0).get_uint32(), message->at(1).get_string()});
    }
    return requests;
}

bool Connection::receive_bytes() {
    std::array<std::uint8_t, k_read_size> buffer{};
    try {
        auto const count = socket_.recv(buffer.data(), buffer.size(), MSG_DONTWAIT);
        assembler_.append(buffer.data(), count);
        return count == buffer.size();
    } catch (utilities::ExceptionSocketTimeout const&) {
        return false;
    }
}

}  // namespace component_client
