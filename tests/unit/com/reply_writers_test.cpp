#include "ara/com/dds/calls/reply_writers.h"

#include "ara/com/dds/offers/offer_types.h"
#include "played_services.h"
#include "support/eventually.h"
#include "support/log_capture.h"
#include "support/played_dds.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <numeric>
#include <optional>
#include <vector>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it

/// A client's two ends, how often its reader was found by a writer of replies, and whether there is one now.
class Client_ends {
 public:
    explicit Client_ends(Participant& participant)
        : requests_(participant, {offer_topic(), "app"}, call_quality(k_longest_write)),
          replies_(participant, {offer_topic(), to_text(guid_of(requests_.entity()))}, call_quality(k_longest_write),
                   [](auto&&...) {}) {}

    unsigned times_found() const { return status().total_count; }
    bool has_writer() const { return status().current_count != 0; }

 private:
    dds_subscription_matched_status_t status() const {
        dds_subscription_matched_status_t status{};
        dds_get_subscription_matched_status(replies_.entity(), &status);
        return status;
    }

    Writer const requests_;
    Reader const replies_;
};

TEST(Reply_writers_test, All_clients_but_the_one_whose_writer_could_not_be_made_keep_theirs_until_the_end) {
    Participant participant;
    Reader const requests(participant, {offer_topic(), "app"}, call_quality(k_longest_write), [](auto&&...) {});
    Reply_writers sut(participant, offer_topic(), [] {});
    std::vector<std::unique_ptr<Client_ends>> clients;
    for (int number = 0; number < 5; ++number) {
        clients.push_back(std::make_unique<Client_ends>(participant));
    }
    sut.follow(requests.entity());
    for (int number = 0; number < 5; ++number) {
        clients.push_back(std::make_unique<Client_ends>(participant));
    }

    test_support::played_dds::faults().writers_until_failure = 2;
    EXPECT_THROW(sut.follow(requests.entity()), tarq::com::Infrastructure_exception);

    auto const found = [&clients] {
        unsigned all = 0;
        for (auto const& client : clients) {
            EXPECT_LE(client->times_found(), 1U);
            all += client->times_found();
        }
        return all;
    };
    EXPECT_EQ(found(), 9U);
    sut.follow(requests.entity());
    EXPECT_EQ(found(), 10U);

    sut.close();
    EXPECT_FALSE(clients.front()->has_writer());
    sut.follow(requests.entity());
    EXPECT_FALSE(clients.front()->has_writer());
}

TEST(Reply_writers_test, One_hundred_and_twenty_eight_clients_have_one_and_the_next_when_another_has_gone) {
    test_support::Log_capture log;
    Participant participant;
    Reader const requests(participant, {offer_topic(), "app"}, call_quality(k_longest_write), [](auto&&...) {});
    Reply_writers sut(participant, offer_topic(), [] {});
    std::vector<std::unique_ptr<Client_ends>> clients;
    for (int number = 0; number < 128; ++number) {
        clients.push_back(std::make_unique<Client_ends>(participant));
    }
    sut.follow(requests.entity());
    Client_ends const late(participant);
    for (int look = 0; look < 3; ++look) {
        sut.follow(requests.entity());
    }
    EXPECT_EQ(clients.back()->times_found(), 1U);
    EXPECT_EQ(late.times_found(), 0U);
    EXPECT_THAT(log.messages(),
                testing::ElementsAre(test_support::logged(ara::log::LogLevel::kWarn, "An instance has more than ", 128U,
                                                          " clients; the others get no replies")))
        << "once";
    bool has_looked = false;
    std::function<void()> const after_look = [&has_looked] { has_looked = true; };
    constexpr dds_instance_handle_t k_nobody = 1;
    test_support::played_dds::faults().after_look = &after_look;
    sut.send(requests.entity(), k_nobody, nullptr, nullptr);
    test_support::played_dds::faults().after_look = nullptr;
    EXPECT_FALSE(has_looked) << "there is no room for whoever asks";

    clients.erase(clients.begin());
    sut.follow(requests.entity());
    EXPECT_EQ(late.times_found(), 1U);
}

// The client's writer is known before its reader: each is announced by itself.
TEST(Reply_writers_test, Keep_the_first_sixteen_replies_and_what_they_look_at_until_there_is_a_reader) {
    Participant participant;
    Reader const requests(participant, {offer_topic(), "app"}, call_quality(k_longest_write), [](auto&&...) {});
    int times_told = 0;
    Reply_writers sut(participant, offer_topic(), [&times_told] { ++times_told; });
    Writer const client(participant, {offer_topic(), "app"}, call_quality(k_longest_write));
    auto const handle = writers_matched_by(requests.entity()).front().handle;
    auto const contents = std::make_shared<int>();
    auto const send = [&](int number) {
        ara_com_ServiceOffer reply{};
        reply.process = number;
        sut.send(requests.entity(), handle, &reply, contents);
    };
    for (int number = 0; number < 18; ++number) {
        send(number);
    }
    EXPECT_EQ(times_told, 0);
    EXPECT_EQ(contents.use_count(), 1 + 16);

    std::vector<std::int64_t> received;
    Reader const replies(participant, {offer_topic(), to_text(guid_of(client.entity()))}, call_quality(k_longest_write),
                         [&received](Sample const& sample, auto&&...) {
                             received.push_back(static_cast<ara_com_ServiceOffer const*>(sample.get())->process);
                         });
    EXPECT_EQ(times_told, 1);
    EXPECT_THAT(received, testing::IsEmpty()) << "not on the engine's thread";
    sut.send_kept();
    std::vector<std::int64_t> wanted(16);
    std::iota(wanted.begin(), wanted.end(), 0);
    EXPECT_EQ(received, wanted);
    EXPECT_EQ(contents.use_count(), 1);
    send(18);
    sut.send_kept();
    wanted.push_back(18);
    EXPECT_EQ(received, wanted);
}

TEST(Reply_writers_test, Of_a_service_are_tried_again_when_one_could_not_be_made) {
    Process const server;
    Process const client;
    auto const offer =
        server->offer(k_service, k_app, [](auto const* /*request*/, auto const& answer) { answer_well(answer); });
    client.await();
    // The first is the client's own.
    test_support::played_dds::faults().writers_until_failure = 1;
    test_support::Log_capture log;
    EXPECT_EQ(end_of(call(*client.connect())), "value");
    EXPECT_EQ(test_support::played_dds::faults().writers_until_failure, -1);
    using ara::log::LogLevel;
    std::vector<test_support::Log_message> const told{
        test_support::logged(LogLevel::kError,
                             "A client can't be answered yet: ", "There can be no writer: Out Of Resources"),
        test_support::logged(LogLevel::kInfo, "All clients can be answered now; failures before: ", 1U)};
    EXPECT_TRUE(test_support::eventually([&] { return log.at_least(LogLevel::kInfo) == told; }));
}

// A reply to a client that has gone makes a thread look that is not the one which follows the clients.
TEST(Reply_writers_test, A_look_that_another_one_overtakes_leaves_a_new_client_its_writer) {
    Participant participant;
    Reader const requests(participant, {offer_topic(), "app"}, call_quality(k_longest_write), [](auto&&...) {});
    Reply_writers sut(participant, offer_topic(), [] {});
    std::optional<Client_ends> client;
    std::future<void> other;
    std::function<void()> const meanwhile = [&] {
        client.emplace(participant);
        other = std::async(std::launch::async, [&] { sut.follow(requests.entity()); });
        // Either it ends before the first look goes on, or it has to wait for that.
        other.wait_for(std::chrono::milliseconds(200));
    };
    test_support::played_dds::faults().after_look = &meanwhile;
    sut.follow(requests.entity());
    ASSERT_TRUE(other.valid());
    other.get();
    EXPECT_TRUE(client->has_writer());
}

}  // namespace
}  // namespace com_unit
