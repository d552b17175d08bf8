// A client on its caller's thread, and a server that says anything: it throws nothing, answers each request with its
// number, and afterwards it is there again for a server that behaves.
//
// A script of the server: a byte for what it does, and the bytes that it needs.
//
//     0 send raw bytes: count, bytes   1 request: number, state   2 send the first bytes of a request: count
//     3 close, the first time          4 close the way out        5 read              6 let the client work
#include "base/temporary_directory.h"
#include "component_client/client.h"
#include "require.h"
#include "utilities/messages.h"
#include "utilities/serialization.h"
#include "utilities/socket.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using component_client::Answer;
using component_client::Client;
using component_client::Status;
using fuzz::require;
using utilities::Bytes;
using utilities::Socket;
using utilities::Type_length_value;

bool is_readable(int descriptor, int time) {
    pollfd ready{descriptor, POLLIN, 0};
    return ::poll(&ready, 1, time) > 0;
}

/// One client, and the server that it has now.
class World {
 public:
    World() : listener_(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0) {
        auto const address = utilities::create_unix_address(path_);
        require(::bind(listener_.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0);
        listener_.listen(1);
        component_client::Options options;
        options.socket_path = path_;
        options.own_thread = false;
        client_.emplace(
            "fuzzed", [this](auto const& state, Answer answer) { handle(state, std::move(answer)); }, options);
    }

    void play(std::uint8_t const* data, std::size_t size) {
        next_ = data;
        end_ = data + size;
        accept();
        while (next_ != end_) {
            step();
        }
        if (size % 16 == 0) {
            require_service();
        }
    }

 private:
    void handle(std::string const& state, Answer answer) {
        ++handled_;
        switch (state.size() % 3) {
            case 0:
                answer.send(Status::succeeded);
                break;
            case 1:
                answer.send(Status::invalid, state);
                break;
            default:
                break;  // it answers by itself
        }
    }

    void step() {
        switch (take() % 7) {
            case 0:
                return send(take_bytes());
            case 1: {
                std::uint32_t const number = take();
                return send(request(number, word(take())));
            }
            case 2: {
                auto bytes = request(7, "kPrepSD");
                bytes.resize(std::min<std::size_t>(bytes.size(), take()));
                return send(bytes);
            }
            case 3:
                return close_once();
            case 4:
                ::shutdown(peer_.get_fd(), SHUT_WR);
                return;
            case 5: {
                std::array<std::uint8_t, 512> bytes{};
                ::recv(peer_.get_fd(), bytes.data(), bytes.size(), MSG_DONTWAIT);
                return;
            }
            default:
                work();
        }
    }

    // The client comes back after a tenth of a second.
    void close_once() {
        if (!std::exchange(has_closed_, true)) {
            peer_ = Socket();
            accept();
        }
    }

    /// All that the client can do now.
    void work() {
        while (is_readable(client_->descriptor(), 0)) {
            client_->dispatch();
        }
    }

    /// Waits for a client that has lost its connection.
    void accept() {
        for (int times = 0; times < 100; ++times) {
            work();
            int const accepted = ::accept4(listener_.get_fd(), nullptr, nullptr, SOCK_CLOEXEC);
            if (accepted >= 0) {
                peer_ = Socket(accepted);
            }
            if (peer_.get_fd() >= 0 && client_->connected()) {
                return;
            }
            is_readable(client_->descriptor(), 200);
        }
        require(false);
    }

    /// The client takes a new server's request, and answers it.
    void require_service() {
        peer_ = Socket();
        accept();
        auto const before = handled_;
        send(request(99, "kOn"));
        while (handled_ == before) {
            require(is_readable(client_->descriptor(), 5000));
            client_->dispatch();
        }
        work();
        utilities::receive_type_length_values(peer_);  // the introduction
        auto const answer = utilities::receive_type_length_values(peer_);
        require(answer.at(0).get_uint32() == 99);
        require(answer.size() == 3);
    }

    void send(Bytes const& bytes) const {
        ::send(peer_.get_fd(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    }

    static Bytes request(std::uint32_t number, std::string const& state) {
        return utilities::serialize({Type_length_value(number), Type_length_value(state)});
    }
    static std::string word(std::uint8_t number) {
        static std::array<char const*, 5> const words{"kOn", "kPrepSD", "", "ab", "unknown"};
        return words.at(number % words.size());
    }

    std::uint8_t take() { return next_ == end_ ? std::uint8_t{0} : *next_++; }
    Bytes take_bytes() {
        std::size_t const wanted = take();
        auto const count = std::min(wanted, static_cast<std::size_t>(end_ - next_));
        Bytes bytes(next_, next_ + count);
        next_ += count;
        return bytes;
    }

    base::Temporary_directory const directory_;
    std::string const path_{directory_.file("socket")};
    Socket listener_;
    Socket peer_;
    std::optional<Client> client_;
    bool has_closed_{false};
    unsigned handled_{0};
    std::uint8_t const* next_{nullptr};
    std::uint8_t const* end_{nullptr};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    World().play(data, size);
    return 0;
}
