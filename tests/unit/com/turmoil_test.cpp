// Everything at once: what ThreadSanitizer looks at, and what has to hold in any order of events.

#include "ara/com/dds/calls/request_number.h"
#include "ara/com/dds/entities/matched.h"
#include "played_services.h"
#include "support/played_dds.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <future>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace com_unit {
namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): what is tested is a part of it

/// Calls by it are over before anybody can answer, or just not.
ara::com::Service_type const k_hasty_service{k_service.name, k_service.request, k_service.reply, k_service.reply_union,
                                             std::chrono::seconds(0)};

/// A place for something that comes and goes; what was there goes on the thread that puts something else there.
template <class Value>
class Place {
 public:
    std::shared_ptr<Value> get() {
        std::lock_guard const lock(mutex_);
        return value_;
    }
    void put(std::shared_ptr<Value> value) {
        std::lock_guard const lock(mutex_);
        std::swap(value_, value);
    }

 private:
    std::mutex mutex_;
    std::shared_ptr<Value> value_;
};

std::shared_ptr<ara::com::Lookup> until_gone(std::shared_ptr<ara::com::Lookup> const& lookup) {
    return {lookup.get(), [lookup](auto* /*gone*/) { lookup->stop(); }};
}

/// Two processes that serve, two that call, and a stranger. Each instance is offered by one process only.
class Turmoil : public testing::TestWithParam<unsigned> {
 protected:
    static constexpr std::size_t k_instances = 3;
    static constexpr unsigned k_steps = 150;
    static constexpr unsigned k_threads = 4;

    struct Call {
        std::uint32_t number;
        std::future<std::string> outcome;
    };

    static ara::com::InstanceIdentifier name(std::size_t instance) {
        return ara::com::InstanceIdentifier("app" + std::to_string(instance));
    }

    void handle(std::size_t instance, void const* request, ara::com::Reply_sink const& answer);
    void stranger_replies(std::mt19937& random);
    void step(std::mt19937& random, std::vector<Call>& calls);
    std::vector<Call> run(unsigned seed);

    std::array<Process, 2> servers_;
    std::array<Process, 2> clients_;
    std::array<Place<ara::com::Offer>, k_instances> offers_;
    std::array<Place<ara::com::Event_source>, k_instances> sources_;
    std::array<Place<ara::com::Connection>, 2 * k_instances> connections_;
    std::array<Place<ara::com::Subscription>, k_instances> subscriptions_;
    std::array<Place<ara::com::Lookup>, 2> lookups_;
    Participant stranger_;
    Reader const strangers_requests_{
        stranger_, {k_service.request, "app0"}, call_quality(k_longest_write), [](auto&&...) {}};
    std::atomic<std::uint32_t> last_number_{0};
    std::atomic<unsigned> steps_{0};  // of all scripts
    std::mutex mutex_;
    std::map<std::uint32_t, int> handled_;
};

void Turmoil::handle(std::size_t instance, void const* request, ara::com::Reply_sink const& answer) {
    auto const number = number_of_call(request);
    {
        std::lock_guard const lock(mutex_);
        ++handled_[number];
    }
    if (number % 32 == 0) {
        offers_[instance].put(nullptr);
    }
    if (number % 8 == 1) {
        throw std::runtime_error("not today");
    }
    answer_well(answer);
}

// To any client of the first instance: refusals of what it may have called.
void Turmoil::stranger_replies(std::mt19937& random) {
    for (auto const& client : writers_matched_by(strangers_requests_.entity())) {
        Writer const replies(stranger_, {k_service.reply, to_text(client.identity)}, call_quality(k_longest_write));
        Reply reply{};
        std::memcpy(&reply.header.relatedRequestId.writer_guid, client.identity.data(), client.identity.size());
        reply.header.relatedRequestId.sequence_number = to_wire(random() % 64);
        reply.header.remoteEx = dds_rpc_REMOTE_EX_UNSUPPORTED;
        reply.data._d = k_method;
        replies.write(&reply);
    }
}

void Turmoil::step(std::mt19937& random, std::vector<Call>& calls) {
    auto const instance = random() % k_instances;
    auto const& server = servers_[instance % 2];
    auto const place = random() % connections_.size();
    auto const& client = clients_[place % 2];
    switch (random() % 16) {
        case 0:
        case 1: {
            if (!offers_[instance].get()) {
                offers_[instance].put(server->offer(
                    k_service, name(instance),
                    [this, instance](auto const* request, auto const& answer) { handle(instance, request, answer); }));
            }
            break;
        }
        case 2:
            offers_[instance].put(nullptr);
            break;
        case 3:
        case 4:
            connections_[place].put(
                client.connect(random() % 4 == 0 ? k_hasty_service : k_service, name(place % k_instances)));
            break;
        case 5:
            connections_[place].put(nullptr);
            break;
        case 6:
            lookups_[place % 2].put(
                until_gone(client->find(k_service, ara::com::InstanceSpecifier("*"), [](auto const&) {})));
            break;
        case 7:
            sources_[instance].put(server->offer_event(random() % 2 == 0 ? k_event : k_field, name(instance)));
            break;
        case 8:
            if (auto const connection = connections_[place].get()) {
                subscriptions_[instance].put(connection->subscribe(
                    random() % 2 == 0 ? k_event : k_field,
                    [](auto const* sample) { number_in(static_cast<Event const*>(sample)->value); }));
            }
            break;
        case 9: {
            auto const all = test_support::played_dds::participants();
            auto const lost = all[random() % all.size()];
            test_support::played_dds::lose(lost);
            test_support::played_dds::find(lost);
            break;
        }
        case 10:
            stranger_replies(random);
            break;
        case 11:
            if (auto const source = sources_[instance].get()) {
                send(*source, last_number_);
            }
            break;
        default:
            if (auto const connection = connections_[place].get()) {
                auto const number = ++last_number_;
                calls.push_back({number, call(*connection, number)});
            }
    }
}

// What has ended, or is offered already, is refused; the script goes on.
std::vector<Turmoil::Call> Turmoil::run(unsigned seed) {
    std::mt19937 random(seed);
    std::vector<Call> calls;
    for (unsigned number = 0; number < k_steps; ++number) {
        ++steps_;
        try {
            step(random, calls);
        } catch (tarq::com::Infrastructure_exception const&) {
            std::this_thread::yield();
        }
    }
    return calls;
}

TEST_P(Turmoil, Ends_each_call_once_handles_none_twice_and_gives_no_value_that_nobody_gave) {
    std::vector<std::future<std::vector<Call>>> scripts;
    for (unsigned number = 0; number < k_threads; ++number) {
        scripts.push_back(
            std::async(std::launch::async, [this, number] { return run(GetParam() * k_threads + number); }));
    }
    // In the midst of it two of the processes end.
    while (steps_ < k_steps * k_threads / 2) {
        std::this_thread::yield();
    }
    clients_[1]->shut_down();
    servers_[1]->shut_down();
    std::vector<Call> calls;
    for (auto& script : scripts) {
        auto some = script.get();
        std::move(some.begin(), some.end(), std::back_inserter(calls));
    }
    clients_[0]->shut_down();
    servers_[0]->shut_down();
    for (auto& call : calls) {
        ASSERT_EQ(call.outcome.wait_for(k_patience), std::future_status::ready);
        EXPECT_LE(handled_[call.number], 1);
        if (call.outcome.get() == "value") {
            EXPECT_EQ(handled_[call.number], 1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Turmoil, testing::Range(0U, 6U));

}  // namespace
}  // namespace com_unit
