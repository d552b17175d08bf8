#include "tools/check/rules.h"

namespace statectl::check {

namespace {

using utilities::Payload_type;

void answer_form(Scene& scene) {
    auto peer = scene.introduced();
    peer.request(1, "kPrepSD");
    auto const answer = peer.receive(scene.patience());
    if (!answer) {
        throw Not_checkable("it does not answer (see answers)");
    }
    bool const is_right = answer->size() == 3 && (*answer)[0].get_type() == Payload_type::uint32 &&
                          (*answer)[0].get_size() == 4 && (*answer)[1].get_type() == Payload_type::string &&
                          (*answer)[2].get_type() == Payload_type::uint32 && (*answer)[2].get_size() == 4;
    if (!is_right) {
        throw Broken("not a number, a string and a number: " + describe(*answer));
    }
    if ((*answer)[2].get_uint32() > 3) {
        throw Broken("the status is none of 0 to 3: " + describe(*answer));
    }
}

void answers_number(Scene& scene) {
    auto peer = scene.introduced();
    auto const* state = "kPrepSD";
    for (std::uint32_t const number : {1U, 2U, 300U, 70'000U, 4'294'967'295U}) {
        scene.ask(peer, number, state);
        state = std::string(state) == "kOn" ? "kPrepSD" : "kOn";
    }
}

void answers_falling_number(Scene& scene) {
    auto peer = scene.introduced();
    scene.ask(peer, 8, "kPrepSD");
    scene.ask(peer, 7, "kOn");
    scene.ask(peer, 0, "kPrepSD");
}

// Its answer may say that it failed; only success must mean the state that was asked for.
void answers_state(Scene& scene) {
    auto peer = scene.introduced();
    std::uint32_t number = 0;
    for (std::string const state : {"kPrepSD", "kOn"}) {
        auto const answer = scene.ask(peer, ++number, state);
        if (answer.size() < 3 || answer[2].get_size() < 4) {
            throw Not_checkable("its answer lacks elements (see answer-form)");
        }
        if (answer[2].get_uint32() == 0 && answer[1].get_string() != state) {
            throw Broken("asked for " + state + " it has succeeded, in state " + answer[1].get_string());
        }
    }
}

// A machine whose clients fail suspends and resumes all the same: nobody but this rule would notice.
void require_success(Scene& scene, Peer& peer, std::uint32_t number, std::string const& state) {
    auto const answer = scene.ask(peer, number, state);
    if (answer.size() < 3 || answer[2].get_size() < 4 || answer[2].get_uint32() > 3) {
        throw Not_checkable("its answer has no status (see answer-form)");
    }
    if (answer[2].get_uint32() != 0) {
        throw Broken("asked for " + state + " it answers with status " + std::to_string(answer[2].get_uint32()));
    }
}

void prepares(Scene& scene) {
    auto peer = scene.introduced();
    require_success(scene, peer, 1, "kPrepSD");
}

void resumes(Scene& scene) {
    auto peer = scene.standing_by();
    require_success(scene, peer, 2, "kOn");
}

void answers_unknown_state(Scene& scene) {
    auto peer = scene.standing_by();
    scene.ask(peer, 2, "kSomethingElse");
}

void answers_same_state(Scene& scene) {
    auto peer = scene.standing_by();
    scene.ask(peer, 2, "kPrepSD");
}

void answers_once(Scene& scene) {
    auto peer = scene.standing_by();
    if (auto const message = peer.receive(scene.quiet())) {
        throw Broken("after its answer it says: " + describe(*message));
    }
}

}  // namespace

std::vector<Rule> answer_rules() {
    return {{"answer-form", "answers with number, state and status", answer_form},
            {"prepares", "succeeds when it is asked for kPrepSD", prepares},
            {"resumes", "succeeds when it is asked for kOn", resumes},
            {"number", "answers with the number of the request", answers_number},
            {"falling-number", "answers a request with a lower number than the one before", answers_falling_number},
            {"state", "succeeds only in the state that was asked for", answers_state},
            {"unknown-state", "answers also when it does not know the state", answers_unknown_state},
            {"same-state", "answers again when it is in the state already", answers_same_state},
            {"once", "answers once", answers_once}};
}

}  // namespace statectl::check
