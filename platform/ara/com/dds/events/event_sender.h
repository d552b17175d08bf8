#ifndef ARA_COM_DDS_EVENTS_EVENT_SENDER_H
#define ARA_COM_DDS_EVENTS_EVENT_SENDER_H

#include "ara/com/binding.h"
#include "ara/com/dds/engine/closing.h"
#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/entities/endpoints.h"
#include "base/mutex.h"

#include <chrono>
#include <memory>

namespace ara::com::dds {

/// The sending end of an event of one instance.
class Event_sender : public Part, public std::enable_shared_from_this<Event_sender> {
 public:
    explicit Event_sender(std::shared_ptr<Engine> engine) : engine_(std::move(engine)) {}

    /// Throws `tarq::com::Infrastructure_exception`.
    void open(Event_type const& event, InstanceIdentifier const& instance);

    /// As long as a writer blocks at most. Throws `tarq::com::Infrastructure_exception`.
    void send(void const* sample, std::chrono::system_clock::time_point set);

    void close() override;

 private:
    std::shared_ptr<Engine> const engine_;
    base::Mutex mutex_;
    std::shared_ptr<Writer> writer_ GUARDED_BY(mutex_);
};

class Owned_event_source : public Closing<Event_source, Event_sender> {
 public:
    using Closing::Closing;
    void send(void const* sample, std::chrono::system_clock::time_point set) override { part().send(sample, set); }
};

}  // namespace ara::com::dds

#endif
