#ifndef ARA_COM_DDS_CALLS_CALLER_H
#define ARA_COM_DDS_CALLS_CALLER_H

#include "ara/com/binding.h"
#include "ara/com/dds/calls/call_path.h"
#include "ara/com/dds/calls/pending_calls.h"
#include "ara/com/dds/calls/server_in_reach.h"
#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/offers/known_offers.h"
#include "ara/com/dds/threads/call_timer.h"
#include "base/condition.h"
#include "base/mutex.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace ara::com::dds {

/// A client's calls to one instance, whoever offers it. A call waits until a server is reached, is sent, and waits for
/// its reply, all within its time. Calls to a server whose offer goes fail with it. A server that is not heard for the
/// lease may come back in a while: calls wait for it, and those that were under way fail after that time, since nobody
/// knows whether they have arrived.
///
/// Words: an *offer* tells that a server is there, a *path* is the pair of endpoints by which calls go to it, and the
/// server is *reached* when both are connected with it.
///
/// The way of a call, on the thread that calls: wait until a server is reached (`await_server`), put the call among
/// those that wait for their replies (`begin`), send it. The reply comes on a thread of the engine (`received`); offers
/// change on the engine's strand (`offers_changed`); the timer ends the calls whose time is over (`expire`). No reply
/// is ended under the mutex, since that runs user code.
class Caller : public Connection,
               public Offer_observer,
               public Expiring,
               public Part,
               public std::enable_shared_from_this<Caller> {
 public:
    Caller(std::shared_ptr<Engine> engine, Service_type const& type, InstanceIdentifier const& instance);
    ~Caller() override { close(); }

    /// Throws `tarq::com::Infrastructure_exception`.
    void open();

    void call(void* request, std::unique_ptr<Pending_reply> pending) override;
    std::unique_ptr<Subscription> subscribe(Event_type const& event, Sample_handler handler) override;

    void offers_changed(Known_offer_list const& offers) override;
    std::optional<Clock::time_point> expire(Clock::time_point now) override;
    void release() override;
    void close() override;

 private:
    struct Begun_call {
        std::shared_ptr<Call_path> path;
        std::int64_t number;
    };

    std::shared_ptr<Call_path> make_path();
    std::shared_ptr<Call_path> new_path_for(Known_offer_list const& offers);
    void await_server(Clock::time_point deadline);
    std::optional<Server_in_reach::Candidate> next_candidate(unsigned seen, Clock::time_point deadline);
    std::optional<Begun_call> begin(std::unique_ptr<Pending_reply>& pending, Clock::time_point deadline);
    void look_at(Clock::time_point when) REQUIRES(mutex_);
    void received(void const* reply);
    std::unique_ptr<Pending_reply> take(dds_rpc_ReplyHeader const& header);
    void connection_changed();

    std::shared_ptr<Engine> const engine_;
    Service_type const& type_;
    InstanceIdentifier const instance_;
    base::Mutex mutex_;
    base::Condition changed_;
    Server_in_reach server_ GUARDED_BY(mutex_);
    Pending_calls calls_ GUARDED_BY(mutex_);
    std::optional<Clock::time_point> next_look_ GUARDED_BY(mutex_);  // of the timer at the calls
};

}  // namespace ara::com::dds

#endif
