#include "simulation/notification/memory_server.h"

#include "utilities/messages.h"
#include "utilities/protocol.h"

#include <array>
#include <stdexcept>

namespace simulation {

using utilities::Type_length_value;

Client_end::Client_end(Memory_sockets& sockets, std::string const& name, std::string const& state)
    : socket_(sockets.connect()) {
    utilities::send_type_length_values(socket_, {Type_length_value(utilities::get_protocol_version_one()),
                                                 Type_length_value(name), Type_length_value(state)});
}

std::optional<Client_end::Request> Client_end::take_request() {
    receive();
    auto const message = frames_.take();
    return message ? std::optional<Request>({message->at(0).get_uint32(), message->at(1).get_string()}) : std::nullopt;
}

void Client_end::answer(Request const& request, std::uint32_t status) const {
    utilities::send_type_length_values(
        socket_, {Type_length_value(request.number), Type_length_value(request.state), Type_length_value(status)});
}

void Client_end::receive() {
    std::array<std::uint8_t, 4096> bytes;
    try {
        while (!has_ended_) {
            frames_.append(bytes.data(), socket_.recv(bytes.data(), bytes.size(), 0));
        }
    } catch (utilities::ExceptionSocketTimeout const&) {  // NOLINT(bugprone-empty-catch): nothing more there
    } catch (std::runtime_error const&) {
        has_ended_ = true;
    }
}

}  // namespace simulation
