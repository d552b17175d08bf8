#include "simulation/notification/memory_sockets.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace simulation {

namespace {

constexpr int k_first = 3;  // those before it every process has

int fail(int error) {
    errno = error;
    return -1;
}

}  // namespace

// Its descriptor is readable while it has a byte.
class Memory_sockets::Bell final : public client_state_notifier::Wake_up_bell {
 public:
    explicit Bell(Memory_sockets& sockets) : sockets_(sockets), descriptor_(sockets.open()) {}
    ~Bell() override { sockets_.close(descriptor_); }

    int descriptor() const override { return descriptor_; }
    bool ring() const override {
        sockets_.open_.at(descriptor_).bytes = "!";
        sockets_.change();
        return true;
    }
    void clear() const override { sockets_.open_.at(descriptor_).bytes.clear(); }

 private:
    Memory_sockets& sockets_;
    int descriptor_;
};

utilities::Socket Memory_sockets::connect() {
    if (listener_ == k_nobody) {
        throw std::system_error(ECONNREFUSED, std::generic_category(), "nobody listens");
    }
    auto const [server, client] = open_pair();
    open_.at(listener_).arrived.push_back(server);
    change();
    return utilities::Socket(client, *this);
}

client_state_notifier::Bound_socket Memory_sockets::listen(std::string const& /*path*/) {
    listener_ = open();
    return {utilities::Socket(listener_, *this), nullptr};
}

int Memory_sockets::accept(utilities::Socket const& listener) {
    auto& arrived = open_.at(listener.get_fd()).arrived;
    if (arrived.empty()) {
        return fail(EAGAIN);
    }
    int const connection = arrived.front();
    arrived.pop_front();
    return connection;
}

std::pair<utilities::Socket, utilities::Socket> Memory_sockets::socket_pair() {
    auto const [first, second] = open_pair();
    return {utilities::Socket(first, *this), utilities::Socket(second, *this)};
}

std::unique_ptr<client_state_notifier::Wake_up_bell> Memory_sockets::bell() {
    return std::make_unique<Bell>(*this);
}

// What fits.
ssize_t Memory_sockets::send(int socket, void const* bytes, std::size_t length, int /*flags*/) {
    auto const peer = open_.find(open_.at(socket).peer);
    if (peer == open_.end()) {
        return fail(EPIPE);
    }
    auto const count = std::min(length, k_room - peer->second.bytes.size());
    if (count == 0) {
        return fail(EAGAIN);
    }
    peer->second.bytes.append(static_cast<char const*>(bytes), count);
    change();
    return static_cast<ssize_t>(count);
}

// What has come, then a failure, then the end.
ssize_t Memory_sockets::recv(int socket, void* bytes, std::size_t length, int /*flags*/) {
    auto& from = open_.at(socket);
    if (!from.bytes.empty()) {
        auto const count = from.bytes.copy(static_cast<char*>(bytes), length);
        from.bytes.erase(0, count);
        return static_cast<ssize_t>(count);
    }
    if (from.error != 0) {
        return fail(std::exchange(from.error, 0));
    }
    return from.peer == k_nobody ? 0 : fail(EAGAIN);
}

// A listener takes those with it whom it has not accepted.
int Memory_sockets::close(int socket) {
    auto const closed = open_.extract(socket);
    if (closed.empty()) {
        return fail(EBADF);
    }
    for (int const number : closed.mapped().arrived) {
        if (auto const waiting = open_.extract(number)) {
            leave(waiting.mapped());
        }
    }
    if (socket == listener_) {
        listener_ = k_nobody;
    }
    leave(closed.mapped());
    return 0;
}

// What the other end sent and nobody read is a broken connection to it.
void Memory_sockets::leave(Open const& closed) {
    if (auto const peer = open_.find(closed.peer); peer != open_.end()) {
        peer->second.peer = k_nobody;
        peer->second.error = closed.bytes.empty() ? 0 : ECONNRESET;
        change();
    }
}

int Memory_sockets::poll(pollfd* entries, std::size_t count, timespec const* /*timeout*/) {
    int ready = 0;
    for (auto* entry = entries; entry != entries + count; ++entry) {
        entry->revents = events_of(entry->fd);
        ready += entry->revents != 0 ? 1 : 0;
    }
    was_ready_ = ready > 0;
    return ready;
}

int Memory_sockets::open() {
    int number = k_first;
    for (auto const& [taken, what] : open_) {
        if (taken != number) {
            break;
        }
        ++number;
    }
    open_[number];
    return number;
}

std::pair<int, int> Memory_sockets::open_pair() {
    int const first = open();
    int const second = open();
    open_[first].peer = second;
    open_[second].peer = first;
    open_[first].is_stream = open_[second].is_stream = true;
    return {first, second};
}

short Memory_sockets::events_of(int socket) const {
    if (socket < 0) {
        return 0;
    }
    auto const found = open_.find(socket);
    if (found == open_.end()) {
        return POLLNVAL;
    }
    auto const& end = found->second;
    bool const has_gone = end.is_stream && end.peer == k_nobody;
    unsigned const in = !end.bytes.empty() || !end.arrived.empty() || has_gone ? POLLIN : 0U;
    return static_cast<short>(in | (has_gone ? POLLHUP : 0U) | (end.error != 0 ? POLLERR : 0U));
}

void Memory_sockets::change() const {
    if (changed_) {
        changed_();
    }
}

}  // namespace simulation
