#include "tools/check/rules.h"
#include "utilities/protocol.h"

namespace statectl::check {

namespace {

void connects(Scene& scene) {
    scene.serve();
    scene.start_program();
    if (!scene.next_connection(scene.patience())) {
        auto const end = scene.program().await_end({});
        throw Broken(end ? "the program has ended with " + *end : "no connection " + within(scene.patience()));
    }
}

void waits_for_server(Scene& scene) {
    scene.start_program();
    if (auto const end = scene.program().await_end(scene.quiet())) {
        throw Broken("without a state manager the program ends with " + *end);
    }
    scene.serve();
    if (!scene.next_connection(scene.patience())) {
        scene.start_program();
        if (!scene.next_connection(scene.patience())) {
            throw Not_checkable("it does not connect at all (see connects)");
        }
        throw Broken("no connection " + within(scene.patience()) + " after the state manager has started");
    }
}

Type_length_values hello_of(Scene& scene) {
    scene.serve();
    scene.start_program();
    auto peer = scene.next_connection(scene.patience());
    if (!peer) {
        throw Not_checkable("it does not connect (see connects)");
    }
    auto hello = peer->receive(scene.patience());
    if (!hello) {
        throw Broken("it says nothing " + within(scene.patience()));
    }
    return *hello;
}

void hello(Scene& scene) {
    auto const said = hello_of(scene);
    if (said.size() != 3) {
        throw Broken("not three elements: " + describe(said));
    }
    for (auto const& element : said) {
        if (element.get_type() != utilities::Payload_type::string) {
            throw Broken("an element is no string: " + describe(said));
        }
    }
    if (said[0].get_string() != utilities::get_protocol_version_one()) {
        throw Broken("the version is not " + utilities::get_protocol_version_one() + ": " + describe(said));
    }
    if (said[1].get_size() == 0 || said[2].get_size() == 0) {
        throw Broken("its name or state is empty: " + describe(said));
    }
}

void one_connection(Scene& scene) {
    auto peer = scene.introduced();
    if (scene.next_connection(scene.quiet())) {
        throw Broken("a second connection came while the first one stands");
    }
}

void says_nothing_unasked(Scene& scene) {
    auto peer = scene.introduced();
    if (auto const message = peer.receive(scene.quiet())) {
        throw Broken("unasked it says: " + describe(*message));
    }
}

void answers(Scene& scene) {
    auto peer = scene.introduced();
    peer.request(1, "kPrepSD");
    if (!peer.receive(scene.patience())) {
        throw Broken(peer.is_closed() ? "it closes the connection instead"
                                      : "it says nothing " + within(scene.patience()));
    }
}

}  // namespace

std::vector<Rule> introduction_rules() {
    return {{"connects", "connects when it is started", connects},
            {"waits", "waits for the state manager when it is started before it", waits_for_server},
            {"hello", "says version, name and state first", hello},
            {"one-connection", "has one connection", one_connection},
            {"unasked", "says nothing unasked", says_nothing_unasked},
            {"answers", "answers a request", answers}};
}

}  // namespace statectl::check
