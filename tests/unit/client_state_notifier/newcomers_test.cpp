#include "client_state_notifier/newcomers.h"

#include "utilities/messages.h"
#include "utilities/poll.h"

#include <gmock/gmock.h>

namespace client_state_notifier {
namespace {

using testing::SizeIs;
using utilities::Type_length_value;

class Newcomers_of_a_server : public testing::Test {
 protected:
    /// The client's end of a connection that has just come.
    utilities::Socket come() {
        auto [server, client] = utilities::socket_pair();
        sut.add(std::move(server));
        return std::move(client);
    }

    static void introduce(utilities::Socket const& client, char const* name) {
        utilities::send_type_length_values(
            client, {Type_length_value("component_client_v1"), Type_length_value(name), Type_length_value("kOn")});
    }

    std::vector<Introduced_client> polled_and_heard() {
        std::vector<pollfd> entries;
        sut.add_to(entries);
        utilities::poll(entries, 0);
        return sut.hear(entries.data(), entries.size());
    }

    Newcomers sut;
};

TEST_F(Newcomers_of_a_server, Are_handed_out_when_they_have_introduced_themselves) {
    auto const client = come();
    introduce(client, "radio");

    auto const introduced = polled_and_heard();

    ASSERT_THAT(introduced, SizeIs(1));
    EXPECT_EQ(introduced[0].name, "radio");
    EXPECT_EQ(introduced[0].state, "kOn");
    EXPECT_EQ(sut.size(), 0U);
    EXPECT_EQ(sut.next_deadline(), std::nullopt);
}

TEST_F(Newcomers_of_a_server, Are_heard_each_for_itself) {
    auto const silent = come();
    auto const client = come();
    auto const silent_as_well = come();
    introduce(client, "radio");

    EXPECT_THAT(polled_and_heard(), SizeIs(1));
    EXPECT_EQ(sut.size(), 2U);

    introduce(silent, "seat");
    EXPECT_THAT(polled_and_heard(), SizeIs(1));
    EXPECT_EQ(sut.size(), 1U);
}

TEST_F(Newcomers_of_a_server, Are_heard_at_once_when_they_come_after_the_poll) {
    auto const silent = come();
    std::vector<pollfd> entries;
    sut.add_to(entries);
    utilities::poll(entries, 0);
    auto const client = come();
    introduce(client, "radio");

    EXPECT_THAT(sut.hear(entries.data(), entries.size()), SizeIs(1));
    EXPECT_EQ(sut.size(), 1U);
}

}  // namespace
}  // namespace client_state_notifier
