// What strangers may send to the six services and to who calls them: requests, replies, samples and offers of any
// octets. Whatever it is, each call ends at once and as a call may end, and a client that behaves is served after it.
#include "ara/com/dds/dds_binding.h"
#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/entities/participant.h"
#include "ara/com/dds/offers/offer_types.h"
#include "require.h"
#include "rpc_headers.h"
#include "service_offer.h"
#include "services.h"
#include "stranger.h"
#include "tarq/com/exception.h"
#include "tarq/udpnm/interface/network_state_interface_proxy.h"
#include "tarq/udpnm/interface/user_data_interface_proxy.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace ara::com::dds;  // NOLINT(google-build-using-namespace): strangers speak for themselves with its parts
using namespace fuzz;           // NOLINT(google-build-using-namespace): a part of theirs

constexpr std::chrono::seconds k_patience{10};

/// Whether the call had a value; it ends soon, and fails as calls may fail.
template <class Value>
bool succeeds(ximo::com::Future<Value> future) {
    require(future.wait_for(k_patience) == std::future_status::ready);
    try {
        future.get();
        return true;
    } catch (tarq::com::Infrastructure_exception const&) {
        return false;
    }
}

/// One service of ours, clients of it, and the stranger's part of it.
template <class Skeleton, class Proxy>
class Service {
 public:
    Service(Participant& stranger, ara::com::Service_type const& type, ara::com::Event_type const* event)
        : stranger_(stranger, type, event), good_(handle(type, "app")), deceived_(handle(type, "strange")) {
        ours_.OfferService();
    }

    Stranger& stranger() { return stranger_; }
    Proxy& good() { return good_; }
    Proxy& deceived() { return deceived_; }

 private:
    static ara::com::ServiceHandle handle(ara::com::Service_type const& type, char const* instance) {
        return {type.name, ara::com::InstanceIdentifier(instance), ""};
    }

    Skeleton ours_;
    Stranger stranger_;
    Proxy good_;
    Proxy deceived_;
};

/// Reads the input.
class Script {
 public:
    Script(std::uint8_t const* data, std::size_t size) : next_(data), end_(data + size) {}

    bool is_over() const { return next_ == end_; }
    std::uint8_t octet() { return is_over() ? 0 : *next_++; }
    std::string text(std::size_t most) {
        auto const size = std::min<std::size_t>({octet(), most, static_cast<std::size_t>(end_ - next_)});
        std::string const text(next_, next_ + size);
        next_ += size;
        return text;
    }

 private:
    std::uint8_t const* next_;
    std::uint8_t const* const end_;
};

struct Runtime {
    Runtime() { ara::com::use_binding(make_binding()); }
};

class World {
 public:
    World() {
        for (auto const* name : names_) {
            offer("strange", name);
            lookups_.push_back(
                ara::com::binding()->find(*types_.at(lookups_.size()), ara::com::InstanceSpecifier("*"),
                                          [](auto const& handles) { require(handles.size() <= k_most_offers); }));
        }
        // What is offered is known a moment later.
        for (std::size_t service = 0; service < k_services;) {
            service += is_served(service) ? 1 : 0;
        }
        network_.deceived().NetworkState.Subscribe(3);
        user_data_.deceived().UserDataChanged.Subscribe(3);
    }

    void play(Script script);

 private:
    static constexpr std::size_t k_services = 6;
    static constexpr std::size_t k_most_offers = 64 + 2;

    void offer(std::string const& instance, char const* interface_name);
    void offer_anything(Script& script);
    bool call_deceived(std::size_t service, bool first);
    void deceive(std::size_t service, bool first, std::string const& answer);
    bool is_served(std::size_t service);

    Runtime const runtime_;
    Participant stranger_;
    Writer const offers_{stranger_, {offer_topic(), {}}, offer_quality()};
    std::vector<ara_com_ServiceOffer> offered_;
    Service<Alive, proxy::StateManagementAliveInterfaceProxy> alive_{stranger_, k_state_management_alive_interface,
                                                                     nullptr};
    Service<Com_alive, proxy::StateManagementComAliveInterfaceProxy> com_alive_{
        stranger_, k_state_management_com_alive_interface, nullptr};
    Service<Wake_up, proxy::StateManagementCWUInterfaceProxy> wake_up_{stranger_, k_state_management_cwu_interface,
                                                                       nullptr};
    Service<Restart, proxy::DSAInterfaceProxy> restart_{stranger_, k_dsa_interface, nullptr};
    Service<Network, udpnm::proxy::NetworkStateInterfaceProxy> network_{stranger_, udpnm::k_network_state_interface,
                                                                        &udpnm::k_network_state};
    Service<User_data, udpnm::proxy::UserDataInterfaceProxy> user_data_{stranger_, udpnm::k_user_data_interface,
                                                                        &udpnm::k_user_data_changed};
    std::array<Stranger*, k_services> const strangers_{&alive_.stranger(),   &com_alive_.stranger(),
                                                       &wake_up_.stranger(), &restart_.stranger(),
                                                       &network_.stranger(), &user_data_.stranger()};
    std::array<ara::com::Service_type const*, k_services> const types_{
        &k_state_management_alive_interface, &k_state_management_com_alive_interface,
        &k_state_management_cwu_interface,   &k_dsa_interface,
        &udpnm::k_network_state_interface,   &udpnm::k_user_data_interface};
    std::vector<char const*> const names_{types_[0]->name, types_[1]->name, types_[2]->name,
                                          types_[3]->name, types_[4]->name, types_[5]->name};
    std::vector<std::shared_ptr<ara::com::Lookup>> lookups_;
};

void World::offer(std::string const& instance, char const* interface_name) {
    ara_com_ServiceOffer offer{};
    std::strncpy(offer.interface_name, interface_name, sizeof offer.interface_name - 1);
    std::strncpy(offer.instance_name, instance.c_str(), sizeof offer.instance_name - 1);
    std::copy(stranger_.identity().begin(), stranger_.identity().end(), offer.participant);
    offer.version = k_mapping_version;
    offers_.write(&offer);
}

// In his own name or in another's, of one of the interfaces or of none, by any process.
void World::offer_anything(Script& script) {
    ara_com_ServiceOffer offer{};
    auto const kind = script.octet();
    auto const interface_name = kind % 8 < k_services ? std::string(names_[kind % 8]) : script.text(255);
    auto const instance = script.text(255);
    std::strncpy(offer.interface_name, interface_name.c_str(), sizeof offer.interface_name - 1);
    std::strncpy(offer.instance_name, instance.c_str(), sizeof offer.instance_name - 1);
    std::copy(stranger_.identity().begin(), stranger_.identity().end(), offer.participant);
    offer.participant[15] = static_cast<std::uint8_t>(offer.participant[15] ^ (kind / 64));
    offer.version = kind / 32 % 2 == 0 ? k_mapping_version : script.octet();
    offer.process = static_cast<std::int8_t>(script.octet());
    std::strncpy(offer.process_space, script.text(127).c_str(), sizeof offer.process_space - 1);
    if (instance != "strange" && instance != "app") {
        offers_.write(&offer);
        offered_.push_back(offer);
    }
}

// The second of the two has no argument, or no result.
bool World::call_deceived(std::size_t service, bool first) {
    switch (service) {
        case 0:
            return succeeds(first ? alive_.deceived().RequestAlive() : alive_.deceived().ReleaseAlive());
        case 1:
            return succeeds(first ? com_alive_.deceived().RequestComAlive({1}, 1)
                                  : com_alive_.deceived().ReleaseComAlive({1}));
        case 2:
            return succeeds(first ? wake_up_.deceived().RequestCarWakeUp(1) : wake_up_.deceived().ReleaseCarWakeUp());
        case 3:
            return succeeds(restart_.deceived().RequestRestart(1));
        case 4:
            return first ? succeeds(network_.deceived().NetworkState.Get())
                         : succeeds(network_.deceived().RequestNetwork({1}));
        default:
            return first ? succeeds(user_data_.deceived().GetUserData())
                         : succeeds(user_data_.deceived().SetUserData({1}));
    }
}

// A value comes of a reply without an error, to the method that was called.
void World::deceive(std::size_t service, bool first, std::string const& answer) {
    constexpr std::array<std::array<std::int32_t, 2>, k_services> k_methods{
        {{1, 0}, {1, 0}, {1, 0}, {0, 0}, {2, 0}, {0, 1}}};
    strangers_[service]->answer_next_with(answer);
    if (call_deceived(service, first)) {
        std::array<std::int32_t, 2> beginning{1, 0};
        std::memcpy(beginning.data(), answer.data(), std::min(answer.size(), sizeof beginning));
        require(beginning[0] == dds_rpc_REMOTE_EX_OK && beginning[1] == k_methods[service][first ? 0 : 1]);
    }
}

bool World::is_served(std::size_t service) {
    switch (service) {
        case 0:
            return succeeds(alive_.good().RequestAlive());
        case 1:
            return succeeds(com_alive_.good().RequestComAlive({1, 2}, 3));
        case 2:
            return succeeds(wake_up_.good().RequestCarWakeUp(1));
        case 3:
            return succeeds(restart_.good().RequestRestart(1));
        case 4:
            return succeeds(network_.good().RequestNetwork({1}));
        default:
            return succeeds(user_data_.good().SetUserData({7})) &&
                   user_data_.good().GetUserData().get().data == Octets{7};
    }
}

void World::play(Script script) {
    std::set<std::size_t> touched;
    while (!script.is_over()) {
        auto const kind = script.octet();
        auto const service = kind / 8 % k_services;
        touched.insert(service);
        switch (kind % 8) {
            case 0:
            case 1:
                strangers_[service]->request(script.text(255));
                break;
            case 2:
            case 3:
            case 4:
                deceive(service, kind % 8 != 4, script.text(255));
                break;
            case 5:
                strangers_[service]->sample(script.text(255));
                break;
            default:
                offer_anything(script);
        }
    }
    for (auto const& offer : std::exchange(offered_, {})) {
        dds_dispose(offers_.entity(), &offer);
    }
    require(std::all_of(touched.begin(), touched.end(), [this](auto service) { return is_served(service); }));
    network_.deceived().NetworkState.Update();
    user_data_.deceived().UserDataChanged.Update();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static auto* const world = new World;  // never ends: the process does
    world->play(Script(data, size));
    return 0;
}
