#ifndef BENCH_NETWORK_SERVICES_H
#define BENCH_NETWORK_SERVICES_H

#include "bench/network/network_player.h"
#include "bench/network/pending_calls.h"

#include <memory>
#include <string>

namespace bench::network {

/// What the node offers to its machine: request and release of the network with the field of the network state, and the
/// user data of the node's messages. Used by the loop's thread; the calls arrive on the binding's.
class Services {
 public:
    /// Offers them under that name. The player must outlive this. Throws `tarq::com::Infrastructure_exception`, and
    /// `tarq::com::Invalid_argument_exception` for a name that is none.
    Services(std::string const& instance, bool tells_first_state, Network_player& player, Control_loop& loop);
    ~Services();
    Services(Services const&) = delete;
    Services& operator=(Services const&) = delete;

    void offer();

    /// Calls that wait for their answers fail.
    void withdraw();

    Call_plan& plan() { return calls_.plan(); }

 private:
    class Network_state_service;
    class User_data_service;

    Network_player& player_;
    Pending_calls calls_;
    std::unique_ptr<Network_state_service> network_state_;
    std::unique_ptr<User_data_service> user_data_;
};

}  // namespace bench::network

#endif
