#ifndef TESTS_SUPPORT_FAKE_ENGINE_H
#define TESTS_SUPPORT_FAKE_ENGINE_H

#include "support/fake_binding.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <utility>

namespace test_support {

/// One lookup of the fake.
class Fake_lookup : public ara::com::Lookup {
 public:
    Fake_lookup(Fake_binding::Engine& engine, std::string interface_name, ara::com::InstanceSpecifier wanted,
                ara::com::FindServiceHandler handler)
        : engine_(engine),
          interface_(std::move(interface_name)),
          wanted_(std::move(wanted)),
          handler_(std::move(handler)) {}

    void stop() override;
    void report(ara::com::ServiceHandleContainer const& handles);

    std::string const& interface_name() const { return interface_; }
    ara::com::InstanceSpecifier const& wanted() const { return wanted_; }

 private:
    Fake_binding::Engine& engine_;
    std::string const interface_;
    ara::com::InstanceSpecifier const wanted_;
    ara::com::FindServiceHandler const handler_;
    bool stopped_{false};
};

/// What stands behind `Fake_binding`. Samples of events and fields are sequences of octets in all interfaces.
class Fake_binding::Engine : public ara::com::Binding {
 public:
    using Key = std::pair<std::string, std::string>;  ///< interface (for events with the event's name) and instance
    using Set_time = std::chrono::system_clock::time_point;
    /// `handle` is given a sample once, named by the time at which a field was set.
    struct Subscriber {
        ara::com::Sample_handler handle;
        Set_time last{};
    };
    using Handler = std::shared_ptr<Subscriber>;

    std::unique_ptr<ara::com::Event_source> offer_event(ara::com::Event_type const& event,
                                                        ara::com::InstanceIdentifier const& instance) override;
    std::unique_ptr<ara::com::Offer> offer(ara::com::Service_type const& type,
                                           ara::com::InstanceIdentifier const& instance,
                                           ara::com::Request_handler handler) override;
    std::shared_ptr<ara::com::Lookup> find(ara::com::Service_type const& type,
                                           ara::com::InstanceSpecifier const& wanted,
                                           ara::com::FindServiceHandler handler) override;
    std::shared_ptr<ara::com::Connection> connect(ara::com::Service_type const& type,
                                                  ara::com::ServiceHandle const& handle) override;

    void note(std::string const& what, Key const& key) { record.push_back(what + ' ' + key.first + ' ' + key.second); }
    void withdraw(Key const& key);
    void call(Key const& key, void* request, ara::com::Pending_reply& pending);
    void send(Key const& topic, bool is_field, void const* sample, Set_time set);
    void report(std::string const& interface_name, ara::com::ServiceHandleContainer const& handles);
    void report_offers(std::string const& interface_name);
    ara::com::ServiceHandleContainer offered(Fake_lookup const& lookup) const;

    std::vector<std::string> record;
    std::map<Key, ara::com::Request_handler> offers;
    std::vector<std::shared_ptr<Fake_lookup>> lookups;
    std::map<std::string, std::deque<std::exception_ptr>> failing_calls;
    std::map<std::string, std::exception_ptr> failing_offers;
    std::exception_ptr failing_stops;
    std::map<Key, std::vector<Handler>> subscribers;
    std::map<Key, std::pair<std::vector<std::uint8_t>, Set_time>> newest_values;
    std::function<void(std::string const&, std::string const&)> observer;
    bool holds_reports{false};
};

}  // namespace test_support

#endif
