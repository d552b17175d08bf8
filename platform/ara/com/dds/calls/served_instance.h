#ifndef ARA_COM_DDS_CALLS_SERVED_INSTANCE_H
#define ARA_COM_DDS_CALLS_SERVED_INSTANCE_H

#include "ara/com/binding.h"
#include "ara/com/dds/calls/recent_requests.h"
#include "ara/com/dds/calls/reply_writers.h"
#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/threads/lasting_failure.h"
#include "ara/com/dds/threads/strand.h"
#include "base/mutex.h"
#include "rpc_headers.h"
#include "tarq/com/exception.h"

#include <atomic>
#include <memory>
#include <optional>

namespace ara::com::dds {

/// The server's side of one offered instance: takes the requests, has each handled once, one after the other,
/// and answers.
///
/// Words: a *way* is the writer of replies to one client; the *strand* is the one of this instance, in whose tasks user
/// code runs; the *engine's strand* is shared by all parts and runs none.
///
/// The way of a call: a thread of the engine brings the request (`received`), which is counted and posted to the
/// strand; there it is left alone if it came before, or else handled (`handle`) and answered on the client's way
/// (`send`), later when the client can't be reached yet (`send_kept`). Clients come and go by themselves: the engine
/// tells that some did, and one look at all of them on the engine's strand (`follow_clients_now`) makes and drops ways,
/// again by the timer where one could not be made.
class Served_instance : public Part, public Expiring, public std::enable_shared_from_this<Served_instance> {
 public:
    Served_instance(std::shared_ptr<Engine> engine, Service_type const& type, InstanceIdentifier instance,
                    Request_handler handler);
    ~Served_instance() override { close(); }

    /// Takes requests and announces the offer. Throws `tarq::com::Infrastructure_exception`.
    void open();

    void close() override;

    /// The timer's thread.
    std::optional<Clock::time_point> expire(Clock::time_point now) override;

 private:
    struct Request;

    std::shared_ptr<Reader> requests();
    void follow_clients();
    void follow_clients_now();
    void received(Sample sample, dds_sample_info_t const& info);
    void serve(Request const& request);
    dds_rpc_RemoteExceptionCode_t handle(Request const& request, Reply_sink const& answer);
    void send(Request const& request, dds_rpc_RemoteExceptionCode_t code, void* reply,
              std::shared_ptr<void const> contents);
    void send_kept();
    void tell_lost(tarq::com::Infrastructure_exception const& error) const;
    void refuse(Request const& request, dds_rpc_RemoteExceptionCode_t code);

    std::shared_ptr<Engine> const engine_;
    Service_type const& type_;
    InstanceIdentifier const instance_;
    Request_handler const handler_;
    std::shared_ptr<Strand> const strand_;
    Reply_writers replies_;
    Recent_requests recent_;  // the strand's
    Lasting_failure failure_{"A client can't be answered yet: ",
                             "All clients can be answered now; failures before: "};  // the engine's strand's
    std::atomic<bool> claimed_{false};
    std::atomic<bool> following_{false};  // a look at the clients is posted
    std::atomic<int> waiting_{0};
    base::Mutex mutex_;
    std::shared_ptr<Reader> requests_ GUARDED_BY(mutex_);
};

}  // namespace ara::com::dds

#endif
