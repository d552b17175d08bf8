#include "support/fake_engine.h"

#include "tarq/com/exception.h"

#include <algorithm>
#include <utility>

namespace test_support {

namespace {

using Engine = Fake_binding::Engine;

constexpr char const* k_participant = "fake participant";

// The sample of each event and field: one sequence of octets.
struct Octets {
    std::uint32_t maximum;
    std::uint32_t length;
    std::uint8_t* buffer;
    bool release;
};

class Fake_offer : public ara::com::Offer {
 public:
    Fake_offer(Engine& engine, Engine::Key key) : engine_(engine), key_(std::move(key)) {}
    ~Fake_offer() override { engine_.withdraw(key_); }

 private:
    Engine& engine_;
    Engine::Key const key_;
};

class Fake_event_source : public ara::com::Event_source {
 public:
    Fake_event_source(Engine& engine, Engine::Key topic, bool is_field)
        : engine_(engine), topic_(std::move(topic)), is_field_(is_field) {}
    ~Fake_event_source() override { engine_.newest_values.erase(topic_); }
    void send(void const* sample, Engine::Set_time set) override { engine_.send(topic_, is_field_, sample, set); }

 private:
    Engine& engine_;
    Engine::Key const topic_;
    bool const is_field_;
};

class Fake_subscription : public ara::com::Subscription {
 public:
    Fake_subscription(Engine& engine, Engine::Key topic, Engine::Handler handler)
        : engine_(engine), topic_(std::move(topic)), handler_(std::move(handler)) {}
    ~Fake_subscription() override {
        auto& handlers = engine_.subscribers[topic_];
        handlers.erase(std::remove(handlers.begin(), handlers.end(), handler_), handlers.end());
        engine_.note("unsubscribe", topic_);
    }

 private:
    Engine& engine_;
    Engine::Key const topic_;
    Engine::Handler const handler_;
};

Engine::Key topic_of(ara::com::Event_type const& event, std::string const& instance) {
    return {std::string(event.service) + ' ' + event.name, instance};
}

class Fake_connection : public ara::com::Connection {
 public:
    Fake_connection(Engine& engine, Engine::Key key) : engine_(engine), key_(std::move(key)) {}
    ~Fake_connection() override { engine_.note("disconnect", key_); }
    Fake_connection(Fake_connection const&) = delete;
    Fake_connection& operator=(Fake_connection const&) = delete;

    void call(void* request, std::unique_ptr<ara::com::Pending_reply> pending) override {
        engine_.call(key_, request, *pending);
    }

    std::unique_ptr<ara::com::Subscription> subscribe(ara::com::Event_type const& event,
                                                      ara::com::Sample_handler handler) override {
        auto const topic = topic_of(event, key_.second);
        engine_.note("subscribe", topic);
        auto shared = std::make_shared<Engine::Subscriber>(Engine::Subscriber{std::move(handler)});
        engine_.subscribers[topic].push_back(shared);
        if (auto const newest = engine_.newest_values.find(topic); newest != engine_.newest_values.end()) {
            auto [octets, set] = newest->second;
            Octets const sample{0, static_cast<std::uint32_t>(octets.size()), octets.data(), false};
            shared->last = set;
            shared->handle(&sample);
        }
        return std::make_unique<Fake_subscription>(engine_, topic, shared);
    }

 private:
    Engine& engine_;
    Engine::Key const key_;
};

}  // namespace

void Fake_lookup::stop() {
    if (engine_.failing_stops) {
        std::rethrow_exception(engine_.failing_stops);
    }
    if (std::exchange(stopped_, true)) {
        return;
    }
    engine_.record.push_back("stop finding " + interface_);
}

void Fake_lookup::report(ara::com::ServiceHandleContainer const& handles) {
    if (!stopped_ && !engine_.holds_reports) {
        handler_(handles);
    }
}

std::unique_ptr<ara::com::Event_source> Engine::offer_event(ara::com::Event_type const& event,
                                                            ara::com::InstanceIdentifier const& instance) {
    return std::make_unique<Fake_event_source>(*this, topic_of(event, instance.ToString()), event.is_field);
}

std::unique_ptr<ara::com::Offer> Engine::offer(ara::com::Service_type const& type,
                                               ara::com::InstanceIdentifier const& instance,
                                               ara::com::Request_handler handler) {
    if (auto const failing = failing_offers.find(type.name); failing != failing_offers.end()) {
        std::rethrow_exception(failing->second);
    }
    Key const key{type.name, instance.ToString()};
    note("offer", key);
    offers[key] = std::move(handler);
    auto offer = std::make_unique<Fake_offer>(*this, key);
    report_offers(key.first);
    return offer;
}

void Engine::withdraw(Key const& key) {
    note("withdraw", key);
    offers.erase(key);
    report_offers(key.first);
}

std::shared_ptr<ara::com::Lookup> Engine::find(ara::com::Service_type const& type,
                                               ara::com::InstanceSpecifier const& wanted,
                                               ara::com::FindServiceHandler handler) {
    note("find", {type.name, wanted.ToString()});
    auto lookup = std::make_shared<Fake_lookup>(*this, type.name, wanted, std::move(handler));
    lookups.push_back(lookup);
    lookup->report(offered(*lookup));
    return lookup;
}

std::shared_ptr<ara::com::Connection> Engine::connect(ara::com::Service_type const& type,
                                                      ara::com::ServiceHandle const& handle) {
    Key const key{type.name, handle.GetInstanceId().ToString()};
    note("connect", key);
    return std::make_shared<Fake_connection>(*this, key);
}

void Engine::call(Key const& key, void* request, ara::com::Pending_reply& pending) {
    note("call", key);
    if (observer) {
        observer(key.first, key.second);
    }
    if (auto& failures = failing_calls[key.first]; !failures.empty()) {
        auto const cause = failures.front();
        failures.pop_front();
        return pending.fail(cause);
    }
    auto const offer = offers.find(key);
    if (offer == offers.end()) {
        return pending.fail(std::make_exception_ptr(tarq::com::Service_not_available_exception()));
    }
    using Code = tarq::com::Remote_exception_code;
    auto const handler = offer->second;  // it may be withdrawn while it runs
    try {
        handler(request, [&pending](void* reply, std::shared_ptr<void const> const&) { pending.succeed(reply); });
    } catch (ara::com::Unknown_operation const&) {
        pending.fail(std::make_exception_ptr(tarq::com::Remote_exception(Code::kUnknownOperation)));
    } catch (std::exception const&) {
        pending.fail(std::make_exception_ptr(tarq::com::Remote_exception(Code::kUnknownException)));
    }
}

void Engine::send(Key const& topic, bool is_field, void const* sample, Set_time set) {
    if (is_field) {
        auto const& octets = *static_cast<Octets const*>(sample);
        newest_values[topic] = {{octets.buffer, octets.buffer + octets.length}, set};
    }
    auto const handlers = subscribers[topic];  // a handler may subscribe or end its subscription
    for (auto const& handler : handlers) {
        if (!is_field || std::exchange(handler->last, set) != set) {
            handler->handle(sample);
        }
    }
}

void Engine::report(std::string const& interface_name, ara::com::ServiceHandleContainer const& handles) {
    auto const running = lookups;  // a report may start another lookup
    for (auto const& lookup : running) {
        if (lookup->interface_name() == interface_name) {
            lookup->report(handles);
        }
    }
}

void Engine::report_offers(std::string const& interface_name) {
    auto const running = lookups;
    for (auto const& lookup : running) {
        if (lookup->interface_name() == interface_name) {
            lookup->report(offered(*lookup));
        }
    }
}

ara::com::ServiceHandleContainer Engine::offered(Fake_lookup const& lookup) const {
    ara::com::ServiceHandleContainer handles;
    for (auto const& [key, handler] : offers) {
        ara::com::InstanceIdentifier const instance(key.second);
        if (key.first == lookup.interface_name() && lookup.wanted().matches(instance)) {
            handles.emplace_back(key.first, instance, k_participant);
        }
    }
    return handles;
}

}  // namespace test_support
