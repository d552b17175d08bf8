#include "client_fixture.h"
#include "peer_numbers.h"

#include <unistd.h>

namespace com_test {
namespace {

// The configuration that docs/wire.md gives for a client on the same machine.
constexpr char const* k_configuration =
    "CYCLONEDDS_URI=<CycloneDDS><Domain id='any'><General><Interfaces><NetworkInterface name='lo' multicast='false'/>"
    "</Interfaces><AllowMulticast>false</AllowMulticast></General><Discovery><ParticipantIndex>auto</ParticipantIndex>"
    "<MaxAutoParticipantIndex>60</MaxAutoParticipantIndex><Peers><Peer address='127.0.0.1'/></Peers></Discovery>"
    "</Domain></CycloneDDS>";

class Stranger : public Client {
 protected:
    // What a client prints that knows the wire and nothing of the binding.
    static std::string printed_by(std::vector<std::string> words) {
        words.insert(words.begin(), STRANGER_PROGRAM);
        return output_of(words);
    }

    static std::string output_of(std::vector<std::string> const& words) {
        // They are not told what ThreadSanitizer can't see in the engine.
        bench::Child_process program(words, {k_configuration, "TSAN_OPTIONS=report_bugs=0"});
        program.wait(k_patience);
        std::string text(1000, '\0');
        auto const count = ::read(program.output(), text.data(), text.size());
        text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        return text;
    }

    bench::Player peer_{server({"app"})};
};

TEST_F(Stranger, A_client_of_another_make_finds_and_calls_a_service) {
    EXPECT_EQ(printed_by({"app", "7", "nothing", "1", "255"}), "reply: exception 0, method 1\n");
    peer_.await_event("request", {{"instance", "app"}, {"bytes", {1, 255}}, {"number", 7}});
}

TEST_F(Stranger, It_is_told_that_a_handler_threw) {
    EXPECT_EQ(printed_by({"app", std::to_string(k_throw), "nothing"}), "reply: exception 5, method -1\n");
}

TEST_F(Stranger, An_unknown_method_is_refused) {
    EXPECT_EQ(printed_by({"app", "7", "method"}), "reply: exception 4, method -1\n");
}

TEST_F(Stranger, The_reply_waits_for_its_reader) {
    EXPECT_EQ(printed_by({"app", "7", "late"}), "reply: exception 0, method 1\n");
}

TEST_F(Stranger, A_request_to_another_instance_is_refused) {
    EXPECT_EQ(printed_by({"app", "7", "instance"}), "reply: exception 2, method -1\n");
    EXPECT_EQ(peer_.log().messages().size(), 1U);
}

TEST_F(Stranger, The_identity_of_a_request_is_not_believed_but_given_back) {
    EXPECT_EQ(printed_by({"app", "7", "identity"}), "reply: exception 0, method 1\n");
}

TEST_F(Stranger, What_does_not_decode_reaches_no_handler_and_harms_nobody) {
    EXPECT_EQ(output_of({HOSTILE_PROGRAM, "app"}), "512 sent to 1\n");
    EXPECT_EQ(printed_by({"app", "7", "nothing"}), "reply: exception 0, method 1\n");
    peer_.await_event("request", {{"number", 7}});
    // Besides that it is ready.
    EXPECT_EQ(peer_.log().messages().size(), 2U);
}

}  // namespace
}  // namespace com_test
