#include "answering_clients.h"

#include "utilities/messages.h"
#include "utilities/protocol.h"
#include "utilities/serialization.h"

#include <array>
#include <cstring>

#include <sys/epoll.h>
#include <sys/socket.h>

namespace benchmarks {

using utilities::Type_length_value;

namespace {

// Where the request number is in a request and in an answer: behind the headers of the frame and of the first element.
constexpr std::size_t k_number_at = 2 * utilities::k_header_size;

void watch(utilities::Socket const& events, utilities::Socket const& socket) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = socket.get_fd();
    ::epoll_ctl(events.get_fd(), EPOLL_CTL_ADD, socket.get_fd(), &event);
}

}  // namespace

Answering_clients::Answering_clients(std::string const& path, std::size_t count) : events_(::epoll_create1(0)) {
    watch(events_, stop_.first);
    for (std::size_t number = 0; number < count; ++number) {
        connect(path, number);
    }
    thread_ = std::thread([this] { answer_requests(); });
}

Answering_clients::~Answering_clients() {
    stop_.second.sendl("", 1, 0);
    thread_.join();
}

void Answering_clients::connect(std::string const& path, std::size_t number) {
    utilities::Socket socket(AF_UNIX, SOCK_STREAM, 0);
    socket.try_connect(utilities::create_unix_address(path), stop_.first);
    utilities::send_type_length_values(
        socket, {Type_length_value(utilities::get_protocol_version_one()),
                 Type_length_value("client " + std::to_string(number)), Type_length_value("kOn")});
    watch(events_, socket);
    clients_.push_back(std::move(socket));
}

void Answering_clients::answer_requests() {
    auto request = utilities::serialize({Type_length_value(0U), Type_length_value(k_state)});
    auto answer = utilities::serialize({Type_length_value(0U), Type_length_value(k_state), Type_length_value(0U)});
    std::array<epoll_event, 64> ready{};
    for (;;) {
        int const count = ::epoll_wait(events_.get_fd(), ready.data(), static_cast<int>(ready.size()), -1);
        for (int i = 0; i < count; ++i) {
            int const socket = ready[static_cast<std::size_t>(i)].data.fd;
            if (socket == stop_.first.get_fd()) {
                return;
            }
            if (::recv(socket, request.data(), request.size(), 0) > 0) {
                std::memcpy(answer.data() + k_number_at, request.data() + k_number_at, sizeof(std::uint32_t));
                ::send(socket, answer.data(), answer.size(), MSG_NOSIGNAL);
            }
        }
    }
}

}  // namespace benchmarks
