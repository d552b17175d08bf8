#include "tools/check/rules.h"

namespace statectl::check {

namespace {

void comes_back(Scene& scene) {
    auto peer = scene.standing_by();
    Type_length_values hello;
    try {
        scene.returned(std::move(peer), hello);
    } catch (Not_checkable const&) {
        auto const end = scene.program().await_end({});
        throw Broken(end ? "the program has ended with " + *end
                         : "no connection and hello " + within(scene.patience()) + " after the state manager is back");
    }
}

void keeps_state(Scene& scene) {
    auto peer = scene.introduced();
    auto const answer = scene.ask(peer, 1, "kPrepSD");
    Type_length_values hello;
    auto const again = scene.returned(std::move(peer), hello);
    if (hello.size() < 3 || answer.size() < 2) {
        throw Not_checkable("its hello or answer lacks elements (see hello and answer-form)");
    }
    if (hello[2].get_string() != answer[1].get_string()) {
        throw Broken("it has answered that it is in state " + answer[1].get_string() + " and comes back in state " +
                     hello[2].get_string());
    }
}

// Nothing of a connection that is lost belongs on the next one.
void forgets_request(Scene& scene) {
    constexpr std::uint32_t k_lost = 4711;
    auto peer = scene.standing_by();
    peer.request(k_lost, "kOn");
    Type_length_values hello;
    auto again = scene.returned(std::move(peer), hello);
    while (auto const message = again.receive(scene.quiet())) {
        if (!message->empty() && message->front().get_size() >= 4 && message->front().get_uint32() == k_lost) {
            throw Broken("it answers a request of the connection before: " + describe(*message));
        }
    }
}

void forgets_half_request(Scene& scene) {
    auto peer = scene.standing_by();
    auto half = request_bytes(2, "kOn");
    half.resize(half.size() / 2);
    peer.send(half);
    Type_length_values hello;
    auto again = scene.returned(std::move(peer), hello);
    scene.ask(again, 3, "kOn");
}

// An announced length of more than the memory of the machine, then one of an element beyond its message.
void survives_nonsense(Scene& scene) {
    auto peer = scene.standing_by();
    peer.send({2, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 127, 1, 2, 3, 4});
    peer.receive(scene.quiet());
    Type_length_values hello;
    auto second = scene.returned(std::move(peer), hello);
    second.send({2, 0, 0, 0, 12, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 0});
    second.receive(scene.quiet());
    auto third = scene.returned(std::move(second), hello);
    scene.ask(third, 2, "kOn");
}

void nonsense(Scene& scene) {
    try {
        survives_nonsense(scene);
    } catch (Not_checkable const& error) {
        if (auto const end = scene.program().await_end({})) {
            throw Broken("the program has ended with " + *end);
        }
        throw;
    }
}

void stays(Scene& scene) {
    auto peer = scene.standing_by();
    scene.ask(peer, 2, "kOn");
    if (auto const end = scene.program().await_end(scene.quiet() * 2)) {
        throw Broken("after a suspend and a resume the program ends with " + *end);
    }
}

void ends(Scene& scene) {
    auto const peer = scene.introduced();
    scene.program().ask_to_end();
    if (!scene.program().await_end(scene.patience())) {
        throw Broken("it still runs " + within(scene.patience()).substr(7) + " after SIGTERM");
    }
}

}  // namespace

std::vector<Rule> life_rules() {
    return {{"comes-back", "comes back when the state manager does", comes_back},
            {"keeps-state", "comes back with the state that it answered last", keeps_state},
            {"forgets", "answers no request of a lost connection", forgets_request},
            {"forgets-half", "starts anew after half a request on a lost connection", forgets_half_request},
            {"nonsense", "survives a state manager that talks nonsense", nonsense},
            {"stays", "runs on after a suspend and a resume", stays},
            {"ends", "ends when it is asked to (SIGTERM)", ends}};
}

}  // namespace statectl::check
