#ifndef TESTS_COMPONENT_COM_CLIENT_FIXTURE_H
#define TESTS_COMPONENT_COM_CLIENT_FIXTURE_H

#include "ara/com/find_service.h"
#include "ara/com/instance.h"
#include "bench/process/player.h"
#include "tarq/com/exception.h"
#include "tarq/com/runtime/component_singleton.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace com_test {

using Bytes = std::vector<std::uint8_t>;
using Com_alive_proxy = ximo::ap::statemanager::proxy::StateManagementComAliveInterfaceProxy;
using Network_proxy = tarq::udpnm::interface::proxy::NetworkStateInterfaceProxy;
using User_data_proxy = tarq::udpnm::interface::proxy::UserDataInterfaceProxy;

inline constexpr std::chrono::seconds k_patience{10};

/// What happened on the binding's threads, in order; the test awaits it.
template <class Item>
class Seen {
 public:
    void add(Item item) {
        std::lock_guard const lock(mutex_);
        items_.push_back(std::move(item));
        changed_.notify_all();
    }

    /// Waits until the items fulfil the condition; returns them in any case when the patience ends.
    template <class Condition>
    std::vector<Item> await(Condition const& condition) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, k_patience, [&] { return condition(items_); });
        return items_;
    }
    std::vector<Item> now() {
        std::lock_guard const lock(mutex_);
        return items_;
    }
    std::vector<Item> await_count(std::size_t count) {
        return await([count](auto const& items) { return items.size() >= count; });
    }

 private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Item> items_;
};

inline std::vector<std::string> names(ara::com::ServiceHandleContainer const& handles) {
    std::vector<std::string> names;
    for (auto const& handle : handles) {
        names.push_back(handle.GetInstanceId().ToString());
    }
    return names;
}

/// A lookup that writes down the names of each report.
template <class Proxy>
class Watching {
 public:
    explicit Watching(std::string const& wanted)
        : handle_(Proxy::StartFindService([this](auto const& handles) { reports.add(names(handles)); },
                                          ara::com::InstanceSpecifier(wanted))) {}
    ~Watching() { Proxy::StopFindService(handle_); }
    Watching(Watching const&) = delete;
    Watching& operator=(Watching const&) = delete;

    /// Waits for a report of exactly these names to be the last.
    void expect(std::vector<std::string> const& wanted) {
        auto const all = reports.await([&](auto const& items) { return !items.empty() && items.back() == wanted; });
        EXPECT_EQ(all.back(), wanted);
    }

    Seen<std::vector<std::string>> reports;

 private:
    ara::com::FindServiceHandle handle_;
};

/// The handle of an instance, once it is offered.
template <class Proxy>
ara::com::ServiceHandle found(std::string const& name) {
    Seen<ara::com::ServiceHandle> handles;
    auto const lookup = Proxy::StartFindService(
        [&handles](auto const& report) {
            for (auto const& handle : report) {
                handles.add(handle);
            }
        },
        ara::com::InstanceSpecifier(name));
    auto const first = handles.await_count(1);
    Proxy::StopFindService(lookup);
    if (first.empty()) {
        throw std::runtime_error("nobody offers " + name);
    }
    return first.front();
}

/// For a server that is given up after a second of silence: the lease that counts is that of who is lost.
inline std::vector<std::string> given_up_soon() {
    return {
        "CYCLONEDDS_URI=<CycloneDDS><Domain id='any'><General><Interfaces><NetworkInterface name='lo' "
        "multicast='false'/></Interfaces><AllowMulticast>false</AllowMulticast></General><Discovery><ParticipantIndex>"
        "auto</ParticipantIndex><MaxAutoParticipantIndex>60</MaxAutoParticipantIndex><Peers><Peer address='127.0.0.1'/>"
        "</Peers><LeaseDuration>1s</LeaseDuration></Discovery></Domain></CycloneDDS>"};
}

/// A client in the test's own process; servers are processes of their own.
class Client : public testing::Test {
 protected:
    static bench::Player server(std::vector<std::string> const& instances,
                                std::vector<std::string> const& environment = {}) {
        std::vector<std::string> words{PEER_PROGRAM};
        words.insert(words.end(), instances.begin(), instances.end());
        return bench::Player(words, environment);
    }

    tarq::com::runtime::Component_singleton runtime_{false, ""};
};

/// Whether a future that must be ready in time holds a value; else its error is shown.
template <class Value>
testing::AssertionResult succeeds(ximo::com::Future<Value> future) {
    if (future.wait_for(k_patience) != std::future_status::ready) {
        return testing::AssertionFailure() << "no end";
    }
    try {
        future.get();
        return testing::AssertionSuccess();
    } catch (std::exception const& error) {
        return testing::AssertionFailure() << error.what();
    }
}

/// The text of the exception that ends a call.
template <class Value>
std::string error_of(ximo::com::Future<Value> future) {
    auto const outcome = succeeds(std::move(future));
    return outcome ? "none" : outcome.message();
}

/// The error that ends a call, once the instance is not told to be unavailable any more; what was just offered is known
/// here a moment later.
template <class Call>
std::string error_once_available(Call const& call) {
    auto const deadline = std::chrono::steady_clock::now() + k_patience;
    auto error = error_of(call());
    while (error == "Service not available exception" && std::chrono::steady_clock::now() < deadline) {
        error = error_of(call());
    }
    return error;
}

/// How the server refused a call; `kOk` for a call that did not fail.
template <class Value>
tarq::com::Remote_exception_code remote_code(ximo::com::Future<Value> future) {
    try {
        future.get();
    } catch (tarq::com::Remote_exception const& error) {
        return error.code();
    } catch (std::exception const& error) {
        ADD_FAILURE() << error.what();
    }
    return tarq::com::Remote_exception_code::kOk;
}

}  // namespace com_test

#endif
