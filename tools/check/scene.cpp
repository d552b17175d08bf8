// rules.cpp makes a scene for each rule, which calls it on the thread that checks: the server appears and the program
// is started, in the order that the rule is about; the program connects, says who it is, is asked, and answers.

#include "tools/check/scene.h"

#include <cerrno>
#include <system_error>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace statectl::check {

Scene::~Scene() {
    program_.reset();
    stop_serving();
}

void Scene::serve() {
    utilities::Socket listener(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto const address = utilities::create_unix_address(start_.socket_path);
    if (::bind(listener.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        throw std::system_error(errno, std::generic_category(), start_.socket_path);
    }
    listener.listen(10);
    listener_.emplace(std::move(listener));
}

void Scene::start_program() {
    program_.reset();
    program_.emplace(start_);
}

void Scene::stop_serving() {
    listener_.reset();
    ::unlink(start_.socket_path.c_str());
}

std::optional<Peer> Scene::next_connection(Milliseconds limit) {
    if (!listener_->poll(POLLIN, limit.count()).second) {
        return std::nullopt;
    }
    return Peer(utilities::Socket(::accept4(listener_->get_fd(), nullptr, nullptr, SOCK_CLOEXEC)));
}

Peer Scene::introduced() {
    serve();
    start_program();
    auto peer = next_connection(limits_.patience);
    if (!peer || !peer->receive(limits_.patience)) {
        throw Not_checkable("it does not come and say who it is (see connects and hello)");
    }
    return std::move(*peer);
}

Peer Scene::returned(Peer&& lost, Type_length_values& hello) {
    stop_serving();
    { auto const gone = std::move(lost); }
    serve();
    auto peer = next_connection(limits_.patience);
    auto said = peer ? peer->receive(limits_.patience) : std::nullopt;
    if (!said) {
        throw Not_checkable("it does not come back (see comes-back)");
    }
    hello = std::move(*said);
    return std::move(*peer);
}

Peer Scene::standing_by() {
    auto peer = introduced();
    ask(peer, 1, "kPrepSD");
    return peer;
}

Type_length_values Scene::ask(Peer& peer, std::uint32_t number, std::string const& state) {
    peer.request(number, state);
    return await_answer(peer, number);
}

Type_length_values Scene::await_answer(Peer& peer, std::uint32_t number) {
    std::string others;
    auto const asked = std::chrono::steady_clock::now();
    auto const deadline = asked + limits_.patience;
    for (;;) {
        auto const left = std::chrono::ceil<Milliseconds>(deadline - std::chrono::steady_clock::now());
        auto message = left.count() > 0 ? peer.receive(left) : std::nullopt;
        if (!message) {
            fail_without_answer(peer, number, others);
        }
        if (!message->empty() && message->front().get_size() >= 4 && message->front().get_uint32() == number) {
            has_answered_ = true;
            longest_answer_ =
                std::max(longest_answer_,
                         std::optional(std::chrono::floor<Milliseconds>(std::chrono::steady_clock::now() - asked)));
            return std::move(*message);
        }
        others += (others.empty() ? "" : ", ") + describe(*message);
    }
}

void Scene::fail_without_answer(Peer const& peer, std::uint32_t number, std::string const& others) {
    if (!has_answered_ && others.empty()) {
        throw Not_checkable("it does not answer (see answers)");
    }
    constexpr Milliseconds k_to_end{1000};
    auto const end = program_->await_end(peer.is_closed() ? k_to_end : Milliseconds::zero());
    auto const how = end                ? ": the program has ended with " + *end
                     : peer.is_closed() ? std::string(": it has closed the connection")
                                        : " came " + within(limits_.patience);
    throw Broken("no answer to request " + std::to_string(number) + how +
                 (others.empty() ? "" : "; what came: " + others));
}

std::string within(Milliseconds limit) {
    auto const whole = std::to_string(limit.count() / 1000);
    auto const rest = std::to_string(limit.count() % 1000 / 100);
    return "within " + whole + (rest == "0" ? "" : "." + rest) + " s";
}

}  // namespace statectl::check
