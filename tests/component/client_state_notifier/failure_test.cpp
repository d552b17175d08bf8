#include "base/system_error.h"
#include "client_state_notifier/client_connections.h"
#include "server_fixture.h"
#include "support/open_descriptors.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace client_state_notifier {
namespace {

using ara::log::LogLevel;
using test_support::logged_in;
using test_support::Test_client;
using testing::ElementsAre;
using testing::Pair;
using utilities::Type_length_value;

/// Each test plays one client that breaks the protocol, and sees that another is served as ever.
class Server_with_a_bad_client : public Server_test {
 protected:
    /// A well-behaved client takes part in a whole request.
    void expect_service() {
        auto outcome = request("kPrepSD", 5s, [](auto const& name) { return name == "good"; });
        good.obey();
        auto const [status, results] = outcome_of(outcome);
        EXPECT_EQ(status, Callback_status::succeeded);
        EXPECT_THAT(results, ElementsAre(Pair("good", Component_client_return_type::succeeded)));
    }

    /// The same without a future.
    bool serves() {
        auto const served = std::make_shared<std::atomic<bool>>(false);
        sut->request_state_change(
            "kPrepSD", [](auto const& name) { return name == "good"; },
            [served](auto status, auto const& /*results*/) { *served = status == Callback_status::succeeded; }, 5s);
        good.obey();
        return eventually([&] { return served->load(); });
    }

    Test_client good{connect("good")};
};

TEST_F(Server_with_a_bad_client, Waits_for_the_rest_of_an_introduction) {
    Test_client bad(path);
    auto const whole = utilities::serialize(
        {Type_length_value("component_client_v1"), Type_length_value("slow"), Type_length_value("kOn")});
    bad.send_bytes(whole.data(), 20);
    expect_service();
    bad.send_bytes(whole.data() + 20, whole.size() - 20);
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 2; }));
}

TEST_F(Server_with_a_bad_client, Takes_bytes_one_by_one) {
    Test_client bad(path);
    auto const whole = utilities::serialize(
        {Type_length_value("component_client_v1"), Type_length_value("slow"), Type_length_value("kOn")});
    for (auto const byte : whole) {
        bad.send_bytes(&byte, 1);
    }
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 2; }));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_one_that_never_introduces_itself) {
    Test_client bad(path);
    expect_service();
    timeval const patience{20, 0};
    ::setsockopt(bad.socket().get_fd(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(has_logged(logged_in(
        "SNCC", LogLevel::kWarn, "connection dropped before it introduced itself: ", "no complete message in time")));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_an_introduction_with_too_few_elements) {
    Test_client bad(path);
    bad.send({Type_length_value("component_client_v1"), Type_length_value("short")});
    EXPECT_TRUE(bad.is_closed_by_server());
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_an_introduction_without_any_element) {
    Test_client bad(path);
    bad.send({});
    EXPECT_TRUE(bad.is_closed_by_server());
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_an_announced_length_beyond_the_bound) {
    Test_client bad(path);
    std::uint8_t header[12] = {2, 0, 0, 0};
    std::uint64_t const length = 65'537;
    std::memcpy(header + 4, &length, sizeof length);
    bad.send_bytes(header, sizeof header);
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kWarn, "connection dropped before it introduced itself: ",
                                     "announced message length is too big: 65537")));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_an_answer_that_ends_too_early) {
    auto bad = connect("bad");
    bad.send({Type_length_value(1U), Type_length_value("kOn")});
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(has_logged(info("client disconnected: ", "bad")));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_an_answer_whose_number_is_no_number) {
    auto bad = connect("bad");
    bad.send({Type_length_value("1"), Type_length_value("kOn"), Type_length_value(0U)});
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kWarn, "client dropped: ", "bad",
                                     ", reason: ", "reached end of data while parsing")));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_an_element_longer_than_its_frame) {
    auto bad = connect("bad");
    std::uint8_t const frame[28] = {2, 0, 0, 0, 16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200, 0, 0, 0, 0, 0, 0, 0};
    bad.send_bytes(frame, sizeof frame);
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kWarn, "client dropped: ", "bad",
                                     ", reason: ", "reached end of data while parsing")));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Takes_no_descriptors_from_it) {
    auto bad = connect("bad", "kOff");
    auto const file = files.write("file", "");
    int const descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    bad.send_with_descriptor({Type_length_value(bad.receive().number), Type_length_value("kOn"), Type_length_value(0U)},
                             descriptor);
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().back().second == "kOn"; }));
    EXPECT_THAT(test_support::descriptors_on(file), ElementsAre(descriptor));
    ::close(descriptor);
}

TEST_F(Server_with_a_bad_client, Is_not_held_up_by_half_an_answer) {
    auto bad = connect("bad");
    std::uint32_t const type = 2;
    bad.send_bytes(&type, sizeof type);
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_one_that_floods) {
    auto bad = connect("bad");
    try {
        for (int i = 0; i < 100'000; ++i) {
            bad.answer(0, "kOn");
        }
    } catch (std::system_error const&) {  // NOLINT(bugprone-empty-catch): closed in the middle of it
    }
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(
        has_logged(logged_in("SNCC", LogLevel::kWarn, "client dropped: ", "bad", ", reason: ", "too many messages")));
    expect_service();
}

// The introduction is one of those that may come unasked. All that is sent at once is received in a few pieces.
TEST_F(Server_with_a_bad_client, Counts_messages_and_not_pieces_for_a_flood) {
    auto const answer = utilities::serialize({Type_length_value(0U), Type_length_value("kOn"), Type_length_value(0U)});
    auto const send = [&](Test_client& client, unsigned count) {
        utilities::Bytes bytes;
        for (unsigned i = 0; i < count; ++i) {
            bytes.insert(bytes.end(), answer.begin(), answer.end());
        }
        client.send_bytes(bytes.data(), bytes.size());
    };
    auto tolerable = connect("tolerable");
    send(tolerable, Inbox::k_most_unasked_a_second - 1);
    EXPECT_TRUE(eventually([&] { return reports().size() == Inbox::k_most_unasked_a_second - 1; }));
    auto bad = connect("bad");
    send(bad, 2 * Inbox::k_most_unasked_a_second);
    EXPECT_TRUE(bad.is_closed_by_server());
    EXPECT_TRUE(
        has_logged(logged_in("SNCC", LogLevel::kWarn, "client dropped: ", "bad", ", reason: ", "too many messages")));
    EXPECT_FALSE(tolerable.has_input());
    expect_service();
}

// More answers in a second than may come unasked.
TEST_F(Server_with_a_bad_client, Keeps_one_that_is_asked_very_often) {
    for (unsigned i = 0; i < 2 * Inbox::k_most_unasked_a_second; ++i) {
        expect_service();
    }
}

TEST_F(Server_with_a_bad_client, Drops_one_that_never_reads) {
    auto bad = connect("bad");
    for (int i = 0; i < 20'000 && sut->get_connected_clients().size() == 2; ++i) {
        outcome_of(request(std::string(200, 'x'), 0s, [](auto const& name) { return name == "bad"; }));
    }
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 1; }));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Drops_one_that_will_not_read_what_it_is_sent_first) {
    Test_client bad(path);
    ::shutdown(bad.socket().get_fd(), SHUT_RD);
    bad.introduce("bad", "kOff");
    EXPECT_TRUE(has_logged(info("client disconnected: ", "bad")));
    std::system_error const reason(EPIPE, std::generic_category(), "Socket::sendl(...)");
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kWarn, "client dropped: ", "bad", ", reason: ", reason.what())));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Tells_why_a_connection_broke) {
    std::optional bad(connect("bad", "kOff"));
    ASSERT_TRUE(bad->has_input(5s));
    bad.reset();  // with a request unread
    EXPECT_TRUE(has_logged(info("client disconnected: ", "bad")));
    std::system_error const reason(ECONNRESET, std::generic_category(), "Socket::recv(...)");
    EXPECT_TRUE(has_logged(logged_in("SNCC", LogLevel::kWarn, "client dropped: ", "bad", ", reason: ", reason.what())));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Tells_no_reason_for_a_client_that_goes) {
    { auto const leaving = connect("leaving"); }
    EXPECT_TRUE(has_logged(info("client disconnected: ", "leaving")));
    EXPECT_TRUE(log.at_least(LogLevel::kWarn).empty());
}

TEST_F(Server_with_a_bad_client, Is_served_on_when_another_goes_at_any_byte) {
    auto const whole = utilities::serialize(
        {Type_length_value("component_client_v1"), Type_length_value("bad"), Type_length_value("kOff")});
    for (std::size_t sent = 0; sent <= whole.size(); ++sent) {
        Test_client bad(path);
        bad.send_bytes(whole.data(), sent);
    }
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 1; }));
    expect_service();
}

TEST_F(Server_with_a_bad_client, Closes_connections_beyond_the_bound) {
    // Both ends of each connection are this process's; the rest is for the log, the listener and what it starts with.
    constexpr rlim_t needed = 2 * Client_connections::k_most_connections + 100;
    if (auto const allowed = test_support::allow_descriptors(needed); allowed < needed) {
        GTEST_SKIP() << "this process may have only " << allowed << " descriptors, and needs " << needed;
    }
    std::vector<Test_client> many;
    for (std::size_t i = 1; i < Client_connections::k_most_connections; ++i) {
        many.emplace_back(path, "client " + std::to_string(i), "kOn");
    }
    Test_client one_more(path);
    EXPECT_TRUE(one_more.is_closed_by_server());
    EXPECT_TRUE(has_logged(logged_in(
        "SNCC", LogLevel::kWarn, "connection refused, there are too many: ", Client_connections::k_most_connections)));
    expect_service();
}

/// No descriptor can be had as long as it lives.
class Full_descriptor_table {
 public:
    Full_descriptor_table() {
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit const full{static_cast<rlim_t>(test_support::next_descriptor()), before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &full);
    }
    ~Full_descriptor_table() { setrlimit(RLIMIT_NOFILE, &before_); }
    Full_descriptor_table(Full_descriptor_table const&) = delete;
    Full_descriptor_table& operator=(Full_descriptor_table const&) = delete;

 private:
    rlimit before_{};
};

TEST_F(Server_with_a_bad_client, Survives_a_full_descriptor_table_without_spinning) {
    utilities::Socket const late(AF_UNIX, SOCK_STREAM, 0);
    auto const never = utilities::socket_pair();
    // A sanitizer needs descriptors for what it sees for the first time, so it sees all of this once before; and no
    // future is used without descriptors.
    ASSERT_TRUE(has_logged(info("socket created: ", path)));
    EXPECT_TRUE(serves());
    {
        Full_descriptor_table const full;
        auto const begin = std::chrono::steady_clock::now();
        ASSERT_TRUE(late.try_connect(utilities::create_unix_address(path), never.first));
        ASSERT_TRUE(has_logged(
            logged_in("SNCC", LogLevel::kError, "no connection can be taken: ", base::system_error_text(EMFILE))));
        EXPECT_TRUE(serves());
        EXPECT_TRUE(eventually([&] { return log.messages(LogLevel::kError).size() >= 3; }));
        auto const said = static_cast<long>(log.messages(LogLevel::kError).size());
        EXPECT_LE(said, (std::chrono::steady_clock::now() - begin) / Listening_socket::k_pause + 1);
    }
    utilities::send_type_length_values(
        late, {Type_length_value("component_client_v1"), Type_length_value("late"), Type_length_value("kOn")});
    EXPECT_TRUE(eventually([&] { return sut->get_connected_clients().size() == 2; }));
}

}  // namespace
}  // namespace client_state_notifier
