#ifndef TESTS_UNIT_SERVICE_HANDLER_THREADED_BINDING_H
#define TESTS_UNIT_SERVICE_HANDLER_THREADED_BINDING_H

#include "ara/com/binding.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ximo::ap::statemanager {

/// How far the one subscription has come.
struct Subscription_state {
    std::mutex handling;  ///< held while the handler runs
    ara::com::Sample_handler handler;
    std::atomic<bool> ending{false};
};

/// Ends as a binding's subscription does: it waits for the handler that runs.
class Waiting_subscription : public ara::com::Subscription {
 public:
    explicit Waiting_subscription(std::shared_ptr<Subscription_state> state) : state_(std::move(state)) {}
    ~Waiting_subscription() override {
        state_->ending = true;
        std::lock_guard<std::mutex> const lock(state_->handling);
    }

 private:
    std::shared_ptr<Subscription_state> const state_;
};

/// An instance that swallows calls.
class Silent_connection : public ara::com::Connection {
 public:
    explicit Silent_connection(std::shared_ptr<Subscription_state> state) : state_(std::move(state)) {}

    void call(void* /*request*/, std::unique_ptr<ara::com::Pending_reply> /*pending*/) override {}
    std::unique_ptr<ara::com::Subscription> subscribe(ara::com::Event_type const& /*event*/,
                                                      ara::com::Sample_handler handler) override {
        state_->handler = std::move(handler);
        return std::make_unique<Waiting_subscription>(state_);
    }

 private:
    std::shared_ptr<Subscription_state> const state_;
};

/// Ends as a binding's lookup does: each stop waits for the handler that runs, except when that calls it.
class Waiting_lookup : public ara::com::Lookup {
 public:
    explicit Waiting_lookup(ara::com::FindServiceHandler handler) : handler_(std::move(handler)) {}

    void stop() override {
        stopped = true;
        if (handling_.load() != std::this_thread::get_id()) {
            std::lock_guard<std::mutex> const lock(mutex_);
        }
    }

    void report(ara::com::ServiceHandleContainer const& handles) {
        std::lock_guard<std::mutex> const lock(mutex_);
        handling_ = std::this_thread::get_id();
        handler_(handles);
        handling_ = std::thread::id();
    }

    std::atomic<bool> stopped{false};

 private:
    ara::com::FindServiceHandler const handler_;
    std::mutex mutex_;
    std::atomic<std::thread::id> handling_{};
};

/// A binding with threads. Its lookups report on a thread each, which meet before they report; samples of the one
/// subscription are delivered on another one.
class Threaded_binding : public ara::com::Binding {
 public:
    explicit Threaded_binding(int lookups_that_meet = 2) : lookups_that_meet_(lookups_that_meet) {}
    ~Threaded_binding() override { join(); }

    /// Waits until both lookups have reported.
    void join() {
        for (auto& thread : threads_) {
            thread.join();
        }
        threads_.clear();
    }

    /// A thread that delivers a sample.
    std::thread send(std::vector<std::uint8_t> octets) {
        return std::thread([state = state_, octets = std::move(octets)]() mutable {
            struct {
                std::uint32_t maximum;
                std::uint32_t length;
                std::uint8_t* buffer;
                bool release;
            } const sample{0, static_cast<std::uint32_t>(octets.size()), octets.data(), false};
            std::lock_guard<std::mutex> const lock(state->handling);
            state->handler(&sample);
        });
    }

    /// False when nobody has begun to end the subscription within some seconds.
    bool await_end_of_subscription() const {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (!state_->ending && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
        return state_->ending;
    }

    std::unique_ptr<ara::com::Event_source> offer_event(ara::com::Event_type const& /*event*/,
                                                        ara::com::InstanceIdentifier const& /*instance*/) override {
        return nullptr;
    }
    std::unique_ptr<ara::com::Offer> offer(ara::com::Service_type const& /*type*/,
                                           ara::com::InstanceIdentifier const& /*instance*/,
                                           ara::com::Request_handler /*handler*/) override {
        return nullptr;
    }
    std::shared_ptr<ara::com::Lookup> find(ara::com::Service_type const& type,
                                           ara::com::InstanceSpecifier const& /*wanted*/,
                                           ara::com::FindServiceHandler handler) override {
        auto lookup = std::make_shared<Waiting_lookup>(std::move(handler));
        threads_.emplace_back([this, name = std::string(type.name), lookup] {
            ++arrived_;
            while (arrived_ < lookups_that_meet_) {
                std::this_thread::yield();
            }
            lookup->report({ara::com::ServiceHandle(name, ara::com::InstanceIdentifier("node"), "")});
        });
        lookups.push_back(lookup);
        return lookup;
    }
    std::shared_ptr<ara::com::Connection> connect(ara::com::Service_type const& /*type*/,
                                                  ara::com::ServiceHandle const& /*handle*/) override {
        return std::make_shared<Silent_connection>(state_);
    }

    std::vector<std::shared_ptr<Waiting_lookup>> lookups;

 private:
    std::shared_ptr<Subscription_state> const state_{std::make_shared<Subscription_state>()};
    int const lookups_that_meet_;
    std::atomic<int> arrived_{0};
    std::vector<std::thread> threads_;
};

}  // namespace ximo::ap::statemanager

#endif
