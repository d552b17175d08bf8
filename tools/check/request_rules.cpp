#include "tools/check/rules.h"

#include <thread>

namespace statectl::check {

namespace {

void append(utilities::Bytes& bytes, utilities::Bytes const& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// Twice the same request, number included: one answer is enough, and nothing is lost.
void duplicate(Scene& scene) {
    auto peer = scene.standing_by();
    auto twice = request_bytes(2, "kOn");
    append(twice, request_bytes(2, "kOn"));
    peer.send(twice);
    scene.await_answer(peer, 2);
    scene.ask(peer, 3, "kPrepSD");
}

void newest(Scene& scene) {
    auto peer = scene.standing_by();
    auto both = request_bytes(2, "kOn");
    append(both, request_bytes(3, "kPrepSD"));
    peer.send(both);
    scene.await_answer(peer, 3);
    if (auto const late = peer.receive(scene.quiet());
        late && !late->empty() && late->front().get_size() >= 4 && late->front().get_uint32() == 2) {
        throw Broken("after its answer to the newest request it answers the one before: " + describe(*late));
    }
}

void byte_by_byte(Scene& scene) {
    constexpr Milliseconds k_between{2};
    constexpr Milliseconds k_longest{500};  // for a program that does not read, of which other rules tell
    auto peer = scene.standing_by();
    for (auto const byte : request_bytes(2, "kOn")) {
        peer.send({byte});
        peer.await_reading(k_longest);
        std::this_thread::sleep_for(k_between);
    }
    scene.await_answer(peer, 2);
}

// A request that comes to its end only after a pause.
void pause_within(Scene& scene) {
    auto peer = scene.standing_by();
    auto const request = request_bytes(2, "kOn");
    auto const middle = request.begin() + static_cast<std::ptrdiff_t>(request.size() / 2);
    peer.send({request.begin(), middle});
    std::this_thread::sleep_for(scene.quiet() * 2);
    peer.send({middle, request.end()});
    scene.await_answer(peer, 2);
}

void late(Scene& scene) {
    auto peer = scene.standing_by();
    peer.receive(scene.quiet() * 4);
    scene.ask(peer, 2, "kOn");
}

void flood(Scene& scene) {
    constexpr std::uint32_t k_requests = 500;
    auto peer = scene.standing_by();
    utilities::Bytes all;
    for (std::uint32_t number = 2; number <= k_requests; ++number) {
        append(all, request_bytes(number, number % 2 == 0 ? "kOn" : "kPrepSD"));
    }
    peer.send(all);
    scene.await_answer(peer, k_requests);
}

}  // namespace

std::vector<Rule> request_rules() {
    return {{"duplicate", "gets along with a request that comes twice", duplicate},
            {"newest", "of two requests at once the newer one is answered last", newest},
            {"slow-bytes", "puts a request together that comes byte by byte", byte_by_byte},
            {"pause", "waits for the rest of a request", pause_within},
            {"late", "answers a request that comes after a long time", late},
            {"flood", "gets along with many requests at once", flood}};
}

}  // namespace statectl::check
