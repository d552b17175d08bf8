// Both sides of calls and events where the engine, or the other side, does what it seldom does.

#include "ara/com/dds/calls/request_number.h"
#include "ara/com/dds/entities/matched.h"
#include "ara/log/logging.h"
#include "played_services.h"
#include "support/log_capture.h"
#include "support/played_dds.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it
using test_support::played_dds::faults;

TEST(Matched_test, All_peers_are_told_however_many_there_are) {
    Participant participant;
    Channel const channel{offer_topic(), "many"};
    Reader const reader(participant, channel, call_quality(k_longest_write), [](auto&&...) {});
    std::vector<std::unique_ptr<Writer>> writers;
    std::set<Guid> identities;
    for (std::size_t count = 1; count <= 33; ++count) {
        writers.push_back(std::make_unique<Writer>(participant, channel, call_quality(k_longest_write)));
        identities.insert(guid_of(writers.back()->entity()));
        std::set<Guid> told;
        for (auto const& peer : writers_matched_by(reader.entity())) {
            told.insert(peer.identity);
        }
        ASSERT_EQ(told, identities);
        ASSERT_EQ(readers_matched_by(writers.back()->entity()).size(), 1U);
    }
}

/// A server and a client, each with a process of its own.
class Calls : public testing::Test {
 protected:
    ~Calls() override { faults().writes_that_fail = 0; }

    void offer(ara::com::Request_handler handler) { offer_ = server_->offer(k_service, k_app, std::move(handler)); }
    void offer_well() {
        offer([](auto const* /*request*/, auto const& answer) { answer_well(answer); });
    }

    /// The first call stays in its handler until the gate is opened.
    void offer_behind_gate() {
        offer([this, open = gate_.get_future().share()](auto const* /*request*/, auto const& answer) {
            if (++handled_ == 1) {
                begun_.set_value();
                open.wait();
            }
            answer_well(answer);
        });
    }

    std::promise<void> begun_;
    std::promise<void> gate_;
    std::atomic<int> handled_{0};
    Process server_;
    std::unique_ptr<ara::com::Offer> offer_;
    Process client_;
};

TEST_F(Calls, A_request_that_can_t_be_sent_fails_its_call_at_once_and_no_other) {
    offer_well();
    auto const sut = client_.reach();
    ASSERT_EQ(end_of(call(*sut)), "value");
    faults().writes_that_fail = 1;
    EXPECT_EQ(end_of(call(*sut)), "Nothing could be sent: Timeout");
    EXPECT_EQ(end_of(call(*sut)), "value");
}

TEST_F(Calls, A_handler_that_throws_what_is_no_exception_fails_its_call_and_no_other) {
    test_support::Log_capture log;
    offer([](auto const* request, auto const& answer) {
        if (number_of_call(request) == 1) {
            throw 1;  // NOLINT(hicpp-exception-baseclass): that is what is tested
        }
        answer_well(answer);
    });
    auto const sut = client_.reach();
    EXPECT_EQ(end_of(call(*sut, 1)), "refused: 5");
    EXPECT_EQ(end_of(call(*sut, 2)), "value");
    EXPECT_THAT(log.at_least(ara::log::LogLevel::kError),
                testing::ElementsAre(test_support::logged(ara::log::LogLevel::kError, "A method of ", "app", " threw ",
                                                          "something that is not an exception")));
}

// One waits in the handler, a thousand for that one, as many refusals behind them; the rest is dropped.
TEST_F(Calls, Of_those_that_wait_a_thousand_are_handled_and_as_many_refused) {
    offer_behind_gate();
    std::map<std::string, int> ends;
    {
        Process const caller;
        auto const sut = caller.reach();
        std::vector<std::future<std::string>> outcomes;
        outcomes.push_back(call(*sut));
        begun_.get_future().wait();
        for (int number = 0; number < 3100; ++number) {
            outcomes.push_back(call(*sut));
        }
        gate_.set_value();
        EXPECT_EQ(end_of(std::move(outcomes[2000])), "refused: 3");
        EXPECT_EQ(end_of(call(*sut)), "value") << "for it nobody waits any more";
        outcomes.erase(outcomes.begin() + 2000);
        caller->shut_down();
        for (auto& outcome : outcomes) {
            ++ends[end_of(std::move(outcome))];
        }
    }
    EXPECT_THAT(ends, testing::ElementsAre(testing::Pair("The communication runtime has ended", 1100),
                                           testing::Pair("refused: 3", 999), testing::Pair("value", 1001)));
}

/// A client's request writer, which is all that there is of it.
class Raw_client {
 public:
    Raw_client() {
        request_.data._d = k_method;
        std::memcpy(&request_.header.requestId.writer_guid, guid_of(requests_.entity()).data(), sizeof(Guid));
        std::strcpy(request_.header.instanceName, "app");
    }
    void request(std::int64_t number) {
        request_.header.requestId.sequence_number = to_wire(number);
        requests_.write(&request_);
    }
    std::unique_ptr<Reader> read(Received_handler received) {
        return std::make_unique<Reader>(participant_, Channel{k_service.reply, to_text(guid_of(requests_.entity()))},
                                        call_quality(k_longest_write), std::move(received));
    }

 private:
    Participant participant_;
    Writer const requests_{participant_, {k_service.request, "app"}, call_quality(k_longest_write)};
    Request request_{};
};

TEST_F(Calls, The_requests_of_a_client_that_never_reads_are_handled_and_the_next_client_is_served) {
    std::atomic<int> handled{0};
    offer([&handled](auto const* /*request*/, auto const& answer) {
        ++handled;
        answer_well(answer);
    });
    Raw_client deaf;
    for (std::int64_t number = 1; number <= 3; ++number) {
        deaf.request(number);
    }
    EXPECT_EQ(end_of(call(*client_.reach())), "value");
    EXPECT_EQ(handled, 4);
}

TEST_F(Calls, A_client_that_is_known_to_read_only_after_its_call_was_handled_gets_the_reply_then) {
    std::promise<void> handled;
    std::promise<void> replied;
    offer([&handled](auto const* /*request*/, auto const& answer) {
        answer_well(answer);
        handled.set_value();
    });
    Raw_client client;
    client.request(1);
    handled.get_future().wait();
    auto const reader = client.read([&replied](auto&&...) { replied.set_value(); });
    EXPECT_EQ(replied.get_future().wait_for(k_patience), std::future_status::ready);
}

// The next offer's reader may be there before the one of the last has gone, and both would handle it.
TEST_F(Calls, A_request_that_comes_after_the_withdrawal_is_left_to_the_next_offer) {
    std::promise<void> handled;
    offer([&handled](auto const* /*request*/, auto const& /*answer*/) { handled.set_value(); });
    Raw_client client;
    auto state = std::future_status::deferred;
    Participant other;
    Reader const offers(other, {offer_topic(), {}}, offer_quality(), [&](auto const& /*sample*/, auto const& info) {
        if (info.instance_state == DDS_IST_NOT_ALIVE_DISPOSED) {
            client.request(1);
            state = handled.get_future().wait_for(std::chrono::milliseconds(100));
        }
    });
    offer_.reset();
    EXPECT_EQ(state, std::future_status::timeout);
}

TEST_F(Calls, The_end_of_an_offer_waits_for_its_handler_and_no_other_begins) {
    offer_behind_gate();
    auto const sut = client_.reach();
    auto const first = call(*sut);
    auto const second = call(*sut);
    begun_.get_future().wait();
    auto const end = std::async(std::launch::async, [this] { offer_.reset(); });
    EXPECT_EQ(end.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    gate_.set_value();
    end.wait();
    EXPECT_EQ(handled_, 1);
}

/// A server that speaks the wire by itself: it makes known what it has of an offer, a reader of requests and a writer
/// of replies, and answers as the test says.
class Raw_server {
 public:
    using Answer = std::function<void(Writer const& replies, Reply& reply)>;

    explicit Raw_server(std::string instance) : instance_(std::move(instance)) {}

    void announce() { offering_.write(offering_.of(k_service.name, instance_)); }
    void take_requests(Answer answer, bool has_way_back = true) {
        answer_ = std::move(answer);
        has_way_back_ = has_way_back;
        requests_.emplace(
            offering_.participant(), Channel{k_service.request, instance_}, call_quality(k_longest_write),
            [this](Sample const& sample, auto const& /*info*/) { serve(*static_cast<Request const*>(sample.get())); },
            [this] { follow(); });
        follow();
    }
    void take_no_requests() { requests_.reset(); }

 private:
    void follow() {
        if (has_way_back_ && requests_) {
            for (auto const& client : writers_matched_by(requests_->entity())) {
                replies_.emplace(offering_.participant(), Channel{k_service.reply, to_text(client.identity)},
                                 call_quality(k_longest_write));
            }
        }
    }
    void serve(Request const& request) {
        Reply reply{};
        reply.header.relatedRequestId = request.header.requestId;
        reply.data._d = k_method;
        answer_(*replies_, reply);
    }

    std::string const instance_;
    Offering offering_;
    Answer answer_;
    bool has_way_back_{true};
    std::optional<Writer> replies_;
    std::optional<Reader> requests_;
};

TEST_F(Calls, A_reply_to_another_client_one_that_nobody_waits_for_and_a_second_one_end_nothing) {
    Raw_server server("app");
    server.announce();
    auto const sut = client_.reach();
    server.take_requests([](auto const& replies, auto const& reply) {
        auto other = reply;
        other.header.remoteEx = dds_rpc_REMOTE_EX_UNSUPPORTED;
        other.header.relatedRequestId.writer_guid.entityId.entityKind ^= 1U;
        replies.write(&other);
        other = reply;
        other.header.remoteEx = dds_rpc_REMOTE_EX_UNSUPPORTED;
        ++other.header.relatedRequestId.sequence_number.lo;
        replies.write(&other);
        replies.write(&reply);
        other.header = reply.header;
        other.header.remoteEx = dds_rpc_REMOTE_EX_UNSUPPORTED;
        replies.write(&other);
    });
    EXPECT_EQ(end_of(call(*sut, 1)), "value");
    EXPECT_EQ(end_of(call(*sut, 2)), "value");
}

TEST_F(Calls, To_a_server_that_is_only_announced_or_never_answers_take_their_time_each) {
    std::map<std::string, std::string> ends;
    std::map<std::string, std::string> const expected{
        {"announced", "The service could not be reached in time"},
        {"deaf", "The service could not be reached in time"},
        {"mute", "The service could not be reached in time"},
        {"silent", "The service did not answer in time"},
    };
    std::map<std::string, std::unique_ptr<Raw_server>> servers;
    std::map<std::string, std::future<std::string>> outcomes;
    for (auto const& [name, end] : expected) {
        auto& server = *(servers[name] = std::make_unique<Raw_server>(name));
        server.announce();
        auto const connection = client_.reach(k_short_service, ara::com::InstanceIdentifier(name));
        if (name != "announced") {
            server.take_requests([](auto&&...) {}, name != "mute");
        }
        if (name == "deaf") {
            server.take_no_requests();
        }
        outcomes[name] = std::async(std::launch::async, [connection] {
            auto const first = end_of(call(*connection));
            auto const second = end_of(call(*connection));
            return first == second ? first : first + ", then " + second;
        });
    }
    for (auto const& [name, end] : expected) {
        EXPECT_EQ(end_of(std::move(outcomes[name])), end) << name;
    }
}

TEST_F(Calls, Nothing_can_be_done_after_the_end) {
    auto const has_ended =
        testing::ThrowsMessage<tarq::com::Infrastructure_exception>("The communication runtime has ended");
    auto const sut = client_.connect();
    auto const source = client_->offer_event(k_event, k_app);
    client_->shut_down();
    EXPECT_THAT([&] { client_->offer(k_service, k_app, {}); }, has_ended);
    EXPECT_THAT([&] { client_->offer_event(k_event, k_app); }, has_ended);
    EXPECT_THAT([&] { client_->find(k_service, ara::com::InstanceSpecifier("*"), {}); }, has_ended);
    EXPECT_THAT([&] { client_.connect(); }, has_ended);
    EXPECT_THAT([&] { send(*source, 1); }, has_ended);
    EXPECT_THAT([&] { sut->subscribe(k_event, {}); },
                testing::ThrowsMessage<tarq::com::Infrastructure_exception>("The communication runtime does not run"));
    EXPECT_EQ(end_of(call(*sut)), "The communication runtime does not run");
    client_->shut_down();
}

// Others may be told of a withdrawal while that of the runtime begins.
TEST_F(Calls, The_end_waits_for_an_owner_who_withdraws_his_offer_meanwhile) {
    std::promise<void> told;
    std::promise<void> gate;
    Participant other;
    Reader const offers(other, {offer_topic(), {}}, offer_quality(),
                        [&, open = gate.get_future().share()](auto const& /*sample*/, auto const& info) {
                            if (info.instance_state == DDS_IST_NOT_ALIVE_DISPOSED) {
                                told.set_value();
                                open.wait();
                            }
                        });
    offer_well();
    auto const withdrawal = std::async(std::launch::async, [this] { offer_.reset(); });
    told.get_future().wait();
    auto const end = std::async(std::launch::async, [this] { server_->shut_down(); });
    EXPECT_EQ(end.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    gate.set_value();
    end.wait();
    withdrawal.wait();
}

class Events : public Calls, public testing::WithParamInterface<ara::com::Event_type const*> {};

// A field's samples are named by the times at which they were set.
TEST_P(Events, Of_those_that_wait_for_a_handler_the_newest_thousand_are_kept) {
    std::promise<void> begun;
    std::promise<void> gate;
    std::promise<void> all;
    std::vector<std::uint32_t> seen;
    auto const subscription =
        client_.connect()->subscribe(*GetParam(), [&, open = gate.get_future().share()](auto const* sample) {
            seen.push_back(number_in(static_cast<Event const*>(sample)->value));
            if (seen.size() == 1) {
                begun.set_value();
                open.wait();
            }
            if (seen.back() == 1005) {
                all.set_value();
            }
        });
    auto const source = server_->offer_event(*GetParam(), k_app);
    std::chrono::system_clock::time_point set(std::chrono::hours(1));
    send(*source, 0, set);
    begun.get_future().wait();
    for (std::uint32_t number = 1; number <= 1005; ++number) {
        send(*source, number, set += std::chrono::nanoseconds(1));
    }
    gate.set_value();
    all.get_future().wait();
    ASSERT_EQ(seen.size(), 1001U);
    EXPECT_EQ(seen[0], 0U);
    EXPECT_EQ(seen[1], 6U);
}

TEST_P(Events, The_end_of_a_subscription_waits_for_its_handler_and_no_other_begins) {
    std::promise<void> begun;
    std::promise<void> gate;
    std::atomic<int> handled{0};
    auto subscription =
        client_.connect()->subscribe(*GetParam(), [&, open = gate.get_future().share()](auto const* /*sample*/) {
            if (++handled == 1) {
                begun.set_value();
                open.wait();
            }
        });
    auto const source = server_->offer_event(*GetParam(), k_app);
    std::chrono::system_clock::time_point const set(std::chrono::hours(1));
    send(*source, 0, set);
    send(*source, 1, set + std::chrono::nanoseconds(1));
    begun.get_future().wait();
    auto const end = std::async(std::launch::async, [&subscription] { subscription.reset(); });
    EXPECT_EQ(end.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    gate.set_value();
    end.wait();
    EXPECT_EQ(handled, 1);
}

INSTANTIATE_TEST_SUITE_P(Of, Events, testing::Values(&k_event, &k_field));

/// The environment's configuration, back as it was afterwards.
class Configuration : public testing::TestWithParam<char const*> {
 protected:
    static constexpr char const* k_variable = "CYCLONEDDS_URI";

    Configuration() {
        if (auto const* const before = std::getenv(k_variable)) {
            before_ = before;
        }
    }
    ~Configuration() override { before_ ? ::setenv(k_variable, before_->c_str(), 1) : ::unsetenv(k_variable); }

 private:
    std::optional<std::string> before_;
};

TEST_P(Configuration, Is_our_own_unless_the_environment_has_one) {
    ::unsetenv(k_variable);
    if (GetParam() != nullptr) {
        ::setenv(k_variable, GetParam(), 1);
    }
    test_support::played_dds::take_configuration();
    Participant const participant;
    auto const is_ours = GetParam() == nullptr || std::string(GetParam()).empty();
    EXPECT_EQ(test_support::played_dds::take_configuration().find("127.0.0.1") != std::string::npos, is_ours);
}

INSTANTIATE_TEST_SUITE_P(Of, Configuration, testing::Values(nullptr, "", "<CycloneDDS/>"));

}  // namespace
}  // namespace com_unit
