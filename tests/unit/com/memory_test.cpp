// What ends needs no memory, and what is told when there is none is told again or with the next.

#include "ara/com/dds/offers/announcer.h"
#include "ara/com/dds/threads/strand.h"
#include "ara/com/dds/threads/workers.h"
#include "ara/com/running_handlers.h"
#include "played_services.h"
#include "support/eventually.h"
#include "support/log_capture.h"
#include "support/no_memory.h"

#include <array>
#include <atomic>
#include <future>
#include <memory>
#include <new>

#include <gmock/gmock.h>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it
using test_support::No_memory;

TEST(Without_memory, A_strand_closes_and_drops_its_tasks) {
    Workers workers;
    auto const sut = std::make_shared<Strand>(workers);
    std::promise<void> open;
    std::promise<void> begun;
    std::atomic<int> ran{0};
    sut->post([&] {
        begun.set_value();
        open.get_future().wait();
    });
    for (int number = 0; number < 40; ++number) {
        sut->post([&ran] { ++ran; });
    }
    begun.get_future().wait();
    {
        No_memory const lack;
        EXPECT_NO_THROW(sut->refuse());
    }
    open.set_value();
    workers.stop();
    EXPECT_EQ(ran, 0);
}

TEST(Without_memory, A_claim_is_given_back) {
    Participant participant;
    Announcer sut(participant);
    sut.claim("an::Interface", "an instance whose name is too long for a place in the text");
    {
        No_memory const lack;
        sut.withdraw("an::Interface", "an instance whose name is too long for a place in the text");
    }
    EXPECT_NO_THROW(sut.claim("an::Interface", "an instance whose name is too long for a place in the text"));
}

TEST(Without_memory, Handlers_run_and_their_end_waits) {
    ara::com::Running_handlers sut;
    int calls = 0;
    {
        No_memory const lack;
        EXPECT_NO_THROW(sut.run([&] { sut.end([&calls] { ++calls; }); }));
        EXPECT_NO_THROW(sut.end([&calls] { ++calls; }));
    }
    EXPECT_EQ(calls, 2);
}

TEST(Without_memory, A_connection_that_nobody_calls_by_ends) {
    Process const client;
    auto connection = client.connect();
    client->shut_down();  // the played engine needs memory to forget something
    {
        No_memory const lack;
        connection.reset();
    }
    EXPECT_FALSE(connection);
}

// The samples of a filter's engine and those of its reader: the writer is this thread, so all of it happens here.
TEST(Without_memory, What_arrives_is_left_alone_and_the_engine_meets_no_exception) {
    test_support::Log_capture log;
    Participant participant;
    bool can_be_admitted = false;
    bool can_be_kept = false;
    int kept = 0;
    auto const unless = [](bool possible) {
        if (!possible) {
            throw std::bad_alloc();
        }
        return true;
    };
    Reader const sut(
        participant, {offer_topic(), {}}, offer_quality(), [&](auto&&...) { kept += unless(can_be_kept) ? 1 : 0; }, {},
        [&](auto&&...) { return unless(can_be_admitted); });
    Offering offering;
    EXPECT_NO_THROW(offering.write(offering.of("an::Interface", "one")));
    can_be_admitted = true;
    EXPECT_NO_THROW(offering.write(offering.of("an::Interface", "two")));
    can_be_kept = true;
    EXPECT_NO_THROW(offering.write(offering.of("an::Interface", "three")));
    EXPECT_EQ(kept, 1);
    auto const told = test_support::logged(ara::log::LogLevel::kError, "no memory for what has arrived");
    EXPECT_THAT(log.messages(), testing::ElementsAre(told, told));
}

TEST(Without_memory, An_offer_is_reported_again_when_there_is_some) {
    Process const server;
    Process const client;
    auto const offer =
        server->offer(k_service, k_app, [](auto const* /*request*/, auto const& answer) { answer_well(answer); });
    std::atomic<int> reports{0};
    auto const lookup =
        client->find(k_service, ara::com::InstanceSpecifier(k_app.ToString()), [&](auto const& handles) {
            if (!handles.empty() && ++reports == 1) {
                throw std::bad_alloc();
            }
        });
    EXPECT_TRUE(test_support::eventually([&] { return reports == 2; }));
    lookup->stop();
}

/// Many strands, each with a task that waits, so that each needs a thread of its own; one allocation of each fails.
class Strands_with_little_memory : public testing::TestWithParam<int> {
 protected:
    static constexpr std::size_t k_strands = 40;  // a list of them needs memory in between
    static constexpr std::size_t k_without = 20;  // and at first none

    bool can_post_to(std::shared_ptr<Strand> const& strand) {
        No_memory const lack(GetParam());
        try {
            strand->post(waiting_);
            return true;
        } catch (std::bad_alloc const&) {
            return false;
        }
    }

    std::promise<void> open_;
    std::shared_future<void> const gate_{open_.get_future()};
    std::atomic<std::size_t> ran_{0};
    Strand::Task const waiting_{[this] {
        gate_.wait();
        ++ran_;
    }};
    std::array<std::shared_ptr<Strand>, k_strands> strands_;
    Workers workers_;  // ends before what its tasks use
};

TEST_P(Strands_with_little_memory, Do_without_a_thread_and_run_what_was_refused_with_the_next_task) {
    for (std::size_t number = 0; number < k_strands; ++number) {
        strands_.at(number) = std::make_shared<Strand>(workers_);
        EXPECT_TRUE(can_post_to(strands_.at(number)) || number >= k_without) << number;
    }
    open_.set_value();
    for (auto const& strand : strands_) {
        strand->post([this] { ++ran_; });
    }
    EXPECT_TRUE(test_support::eventually([this] { return ran_ == 2 * k_strands; })) << ran_;
    workers_.stop();
}

INSTANTIATE_TEST_SUITE_P(After, Strands_with_little_memory, testing::Range(0, 3));

}  // namespace
}  // namespace com_unit
