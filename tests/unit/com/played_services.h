#ifndef TESTS_UNIT_COM_PLAYED_SERVICES_H
#define TESTS_UNIT_COM_PLAYED_SERVICES_H

#include "ara/com/binding.h"
#include "ara/com/dds/dds_binding.h"
#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/entities/guid.h"
#include "ara/com/dds/offers/offer_types.h"
#include "ara/com/dds/offers/process_space.h"
#include "ara/com/octets.h"
#include "network_state_interface.h"
#include "service_offer.h"
#include "tarq/com/exception.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

/// Services on the played engine (support/played_dds.h): bindings as several processes have them, and those who speak
/// the wire without one.
namespace com_unit {

using Octets = std::vector<std::uint8_t>;
using Request = tarq_udpnm_interface_NetworkStateInterface_Request;
using Reply = tarq_udpnm_interface_NetworkStateInterface_Reply;
using Event = tarq_udpnm_interface_NetworkStateInterface_NetworkState;

inline constexpr std::chrono::seconds k_patience{20};
inline constexpr std::int32_t k_method = tarq_udpnm_interface_NetworkStateInterface_Method_RequestNetwork;
inline ara::com::InstanceIdentifier const k_app{"app"};

/// The same types for all; calls may take as long as the second says.
inline ara::com::Service_type const k_service{
    "an::Interface",
    {&tarq_udpnm_interface_NetworkStateInterface_Request_desc, sizeof(Request)},
    {&tarq_udpnm_interface_NetworkStateInterface_Reply_desc, sizeof(Reply)},
    offsetof(Reply, data),
    k_patience};
inline ara::com::Service_type const k_short_service{k_service.name, k_service.request, k_service.reply,
                                                    k_service.reply_union, std::chrono::seconds(1)};
inline ara::com::Event_type const k_event{
    k_service.name, "event", {&tarq_udpnm_interface_NetworkStateInterface_NetworkState_desc, sizeof(Event)}, false};
inline ara::com::Event_type const k_field{k_event.service, "field", k_event.sample, true};

inline Octets octets_of(std::uint32_t number) {
    return {static_cast<std::uint8_t>(number >> 16U), static_cast<std::uint8_t>(number >> 8U),
            static_cast<std::uint8_t>(number)};
}

template <class Sequence>
std::uint32_t number_in(Sequence const& octets) {
    return octets._length < 3 ? 0
                              : (static_cast<std::uint32_t>(octets._buffer[0]) << 16U) +
                                    (static_cast<std::uint32_t>(octets._buffer[1]) << 8U) + octets._buffer[2];
}

inline std::uint32_t number_of_call(void const* request) {
    return number_in(static_cast<Request const*>(request)->data._u.requestNetwork.bits);
}

inline void answer_well(ara::com::Reply_sink const& answer) {
    Reply reply{};
    reply.data._d = k_method;
    answer(&reply, nullptr);
}

/// A binding of its own, as another process has it.
class Process {
 public:
    ~Process() { binding_->shut_down(); }
    ara::com::Binding* operator->() const { return binding_.get(); }

    std::shared_ptr<ara::com::Connection> connect(ara::com::Service_type const& type = k_service,
                                                  ara::com::InstanceIdentifier const& instance = k_app) const {
        return binding_->connect(type, {type.name, instance, ""});
    }
    /// Returns once it is known here that somebody offers the instance.
    void await(ara::com::InstanceIdentifier const& instance = k_app) const {
        std::promise<void> found;
        auto const lookup = binding_->find(k_service, ara::com::InstanceSpecifier(instance.ToString()),
                                           [&found, is_found = false](auto const& handles) mutable {
                                               if (!handles.empty() && !std::exchange(is_found, true)) {
                                                   found.set_value();
                                               }
                                           });
        found.get_future().wait();
        lookup->stop();
    }
    std::shared_ptr<ara::com::Connection> reach(ara::com::Service_type const& type = k_service,
                                                ara::com::InstanceIdentifier const& instance = k_app) const {
        await(instance);
        return connect(type, instance);
    }

 private:
    std::shared_ptr<ara::com::Binding> const binding_{ara::com::dds::make_binding()};
};

/// How a call ended: "value", or the text of its exception; once.
class Outcome : public ara::com::Pending_reply {
 public:
    static std::future<std::string> of(std::unique_ptr<ara::com::Pending_reply>& pending) {
        auto outcome = std::make_unique<Outcome>();
        auto future = outcome->ended_.get_future();
        pending = std::move(outcome);
        return future;
    }

    void succeed(void const* /*reply*/) override { ended_.set_value("value"); }
    void fail(std::exception_ptr cause) override {
        try {
            std::rethrow_exception(std::move(cause));
        } catch (tarq::com::Remote_exception const& error) {
            ended_.set_value("refused: " + std::to_string(static_cast<int>(error.code())));
        } catch (std::exception const& error) {
            ended_.set_value(error.what());
        }
    }

 private:
    std::promise<std::string> ended_;
};

inline std::future<std::string> call(ara::com::Connection& connection, std::uint32_t number = 0) {
    std::unique_ptr<ara::com::Pending_reply> pending;
    auto outcome = Outcome::of(pending);
    auto const octets = octets_of(number);
    Request request{};
    request.data._d = k_method;
    request.data._u.requestNetwork.bits = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(octets);
    connection.call(&request, std::move(pending));
    return outcome;
}

inline std::string end_of(std::future<std::string> outcome) {
    return outcome.wait_for(2 * k_patience) == std::future_status::ready ? outcome.get() : "no end";
}

inline void send(ara::com::Event_source& source, std::uint32_t number,
                 std::chrono::system_clock::time_point set = std::chrono::system_clock::now()) {
    auto const octets = octets_of(number);
    Event sample{};
    sample.value = ara::com::view<tarq_udpnm_interface_NetworkStateInterface_Bytes>(octets);
    source.send(&sample, set);
}

/// Who offers something without a binding, with what he says of himself.
class Offering {
 public:
    ara::com::dds::Participant& participant() { return participant_; }
    ara::com::dds::Guid const& identity() const { return participant_.identity(); }

    ara_com_ServiceOffer of(std::string const& interface_name, std::string const& instance, pid_t process = 0) const {
        static auto const space = ara::com::dds::process_space();
        ara_com_ServiceOffer offer{};
        std::strncpy(offer.interface_name, interface_name.c_str(), sizeof offer.interface_name - 1);
        std::strncpy(offer.instance_name, instance.c_str(), sizeof offer.instance_name - 1);
        std::copy(identity().begin(), identity().end(), offer.participant);
        offer.version = ara::com::dds::k_mapping_version;
        offer.process = process;
        std::strncpy(offer.process_space, space.c_str(), sizeof offer.process_space - 1);
        return offer;
    }
    void write(ara_com_ServiceOffer const& offer,
               std::chrono::system_clock::time_point time = std::chrono::system_clock::now()) const {
        offers_.write(&offer, time);
    }
    void withdraw(ara_com_ServiceOffer const& offer) const { dds_dispose(offers_.entity(), &offer); }
    // As when it is not heard for its lease.
    void lose(ara_com_ServiceOffer const& offer) const { dds_unregister_instance(offers_.entity(), &offer); }

 private:
    ara::com::dds::Participant participant_;
    ara::com::dds::Writer const offers_{
        participant_, {ara::com::dds::offer_topic(), {}}, ara::com::dds::offer_quality()};
};

}  // namespace com_unit

#endif
