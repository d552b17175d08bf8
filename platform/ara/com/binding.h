#ifndef ARA_COM_BINDING_H
#define ARA_COM_BINDING_H

#include "ara/com/find_service.h"
#include "ara/com/instance.h"
#include "ara/com/service_type.h"

#include <chrono>
#include <exception>
#include <functional>
#include <memory>

/// The seam between skeletons and proxies on the one side and the engine that carries their calls on the other.
/// A sample is a pointer to an IDL type in the standard C mapping; it is valid during the call that it is given to.
namespace ara::com {

/// Sends the answer of the call that is being handled; the binding fills the header. It may keep a copy of the reply's
/// octets until the client can be reached, and `contents` with it: what the reply's pointers look at; null without any.
using Reply_sink = std::function<void(void* reply, std::shared_ptr<void const> contents)>;

/// Handles one call: acts and answers through the sink, once. Throws `Unknown_operation` for a method that the
/// interface does not have; what else it throws is answered as an unknown exception.
using Request_handler = std::function<void(void const* request, Reply_sink const& answer)>;

struct Unknown_operation : std::exception {
    char const* what() const noexcept override { return "unknown operation"; }
};

/// An offered instance. Destroying it withdraws the offer and waits for the handler that runs, except on the handler's
/// own thread. Calls to one instance are handled in order, on a thread of the binding.
class Offer {
 public:
    virtual ~Offer() = default;
};

/// The sending end of an event or field of one instance.
class Event_source {
 public:
    virtual ~Event_source() = default;
    /// `set` is when the sample's value was set. Of a field it names the value: who has taken it does not get it again,
    /// however often it is sent. Bounded in time. Throws `tarq::com::Infrastructure_exception`.
    virtual void send(void const* sample, std::chrono::system_clock::time_point set) = 0;
};

/// What becomes of a call: one of the two is called, once, on any thread, and neither may block.
class Pending_reply {
 public:
    virtual ~Pending_reply() = default;
    virtual void succeed(void const* reply) = 0;
    virtual void fail(std::exception_ptr cause) = 0;
};

using Sample_handler = std::function<void(void const* sample)>;

/// The receiving end of an event or field. Destroying it ends the subscription and waits for the handler that runs,
/// except on the handler's own thread.
class Subscription {
 public:
    virtual ~Subscription() = default;
};

/// A client's way to one instance. It outlives the instance's withdrawal and serves again after a new offer.
class Connection {
 public:
    virtual ~Connection() = default;
    /// Sends a request. Every failure goes to `pending`, and so does the reply; nothing is thrown.
    virtual void call(void* request, std::unique_ptr<Pending_reply> pending) = 0;
    /// Calls the handler for each sample in order, on a thread of the binding.
    virtual std::unique_ptr<Subscription> subscribe(Event_type const& event, Sample_handler handler) = 0;
};

/// A running lookup.
class Lookup {
 public:
    virtual ~Lookup() = default;
    /// No report begins after this returned, and none is running unless it is the caller. May be repeated.
    virtual void stop() = 0;
};

/// An engine. All operations may be called by any thread and throw `tarq::com::Infrastructure_exception`.
class Binding {
 public:
    virtual ~Binding() = default;
    virtual std::unique_ptr<Event_source> offer_event(Event_type const& event, InstanceIdentifier const& instance) = 0;
    /// No handler runs for an offer that fails.
    virtual std::unique_ptr<Offer> offer(Service_type const& type, InstanceIdentifier const& instance,
                                         Request_handler handler) = 0;
    virtual std::shared_ptr<Lookup> find(Service_type const& type, InstanceSpecifier const& wanted,
                                         FindServiceHandler handler) = 0;
    virtual std::shared_ptr<Connection> connect(Service_type const& type, ServiceHandle const& handle) = 0;

    /// Ends all that came of this binding and its threads, whoever still holds it; it is of no use from then on. From
    /// no thread of the binding.
    virtual void shut_down() {}
};

/// The process's binding. Throws `tarq::com::Infrastructure_exception` when there is none.
std::shared_ptr<Binding> binding();

/// Makes a binding the process's and returns the one before; null takes it away.
std::shared_ptr<Binding> use_binding(std::shared_ptr<Binding> binding);

}  // namespace ara::com

#endif
