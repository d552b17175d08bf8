#include "ara/com/dds/dds_binding.h"

#include "ara/com/dds/calls/caller.h"
#include "ara/com/dds/calls/served_instance.h"
#include "ara/com/dds/engine/closing.h"
#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/events/event_sender.h"
#include "ara/com/dds/lookups/running_lookup.h"
#include "base/mutex.h"
#include "tarq/com/exception.h"

#include <utility>

namespace ara::com::dds {

namespace {

class Dds_binding : public Binding {
 public:
    ~Dds_binding() override { end(); }

    void shut_down() override { end(); }

    std::unique_ptr<Event_source> offer_event(Event_type const& event, InstanceIdentifier const& instance) override {
        auto sender = std::make_shared<Event_sender>(engine());
        sender->open(event, instance);
        return std::make_unique<Owned_event_source>(std::move(sender));
    }

    std::unique_ptr<Offer> offer(Service_type const& type, InstanceIdentifier const& instance,
                                 Request_handler handler) override {
        auto served = std::make_shared<Served_instance>(engine(), type, instance, std::move(handler));
        served->open();
        return std::make_unique<Closing<Offer, Served_instance>>(std::move(served));
    }

    std::shared_ptr<Lookup> find(Service_type const& type, InstanceSpecifier const& wanted,
                                 FindServiceHandler handler) override {
        auto lookup = std::make_shared<Running_lookup>(engine(), type.name, wanted, std::move(handler));
        lookup->start();
        return lookup;
    }

    std::shared_ptr<Connection> connect(Service_type const& type, ServiceHandle const& handle) override {
        auto caller = std::make_shared<Caller>(engine(), type, handle.GetInstanceId());
        caller->open();
        return caller;
    }

 private:
    void end() {
        if (auto const engine = last_engine()) {
            engine->shut_down();
        }
    }

    std::shared_ptr<Engine> last_engine() {
        base::Lock_guard const lock(mutex_);
        down_ = true;
        return std::move(engine_);
    }

    std::shared_ptr<Engine> engine() {
        base::Lock_guard const lock(mutex_);
        if (down_) {
            throw tarq::com::Infrastructure_exception("The communication runtime has ended");
        }
        if (!engine_) {
            engine_ = std::make_shared<Engine>();
        }
        return engine_;
    }

    base::Mutex mutex_;
    std::shared_ptr<Engine> engine_ GUARDED_BY(mutex_);
    bool down_ GUARDED_BY(mutex_){false};
};

}  // namespace

std::shared_ptr<Binding> make_binding() {
    return std::make_shared<Dds_binding>();
}

}  // namespace ara::com::dds

#ifdef __SANITIZE_THREAD__
// What ThreadSanitizer is not to report in programs that use the binding.
//
// libddsc: it is not built with the sanitizer, which so sees neither its atomics nor its reference counts. Handlers
// that the engine calls are seen all the same, since what the engine calls first is not instrumented
// (entities/endpoints.cpp). exception_ptr: its reference count is in the standard library, which is not built with the
// sanitizer either.
extern "C" char const* __tsan_default_suppressions();

extern "C" char const* __tsan_default_suppressions() {
    return "race:libddsc.so\n"
           "race:std::__exception_ptr::exception_ptr::_M_release\n";
}
#endif
