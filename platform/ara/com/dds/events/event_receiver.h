#ifndef ARA_COM_DDS_EVENTS_EVENT_RECEIVER_H
#define ARA_COM_DDS_EVENTS_EVENT_RECEIVER_H

#include "ara/com/binding.h"
#include "ara/com/dds/engine/engine.h"
#include "ara/com/dds/entities/endpoints.h"
#include "ara/com/dds/threads/strand.h"
#include "base/mutex.h"

#include <deque>
#include <memory>

namespace ara::com::dds {

/// A subscription: takes the samples of an event of one instance, whoever offers it.
///
/// A writer that was lost and is found again, or that stands for a new offer, repeats what it keeps. Of a field each
/// value is handed on once: the times at which values were set, which samples tell, name those that were taken.
class Event_receiver : public Part, public std::enable_shared_from_this<Event_receiver> {
 public:
    Event_receiver(std::shared_ptr<Engine> engine, Event_type const& event, Sample_handler handler);
    ~Event_receiver() override { close(); }

    /// Throws `tarq::com::Infrastructure_exception`.
    void open(InstanceIdentifier const& instance);

    void close() override;

 private:
    void received(Sample sample, dds_time_t set);
    bool is_repeated(dds_time_t set) REQUIRES(mutex_);
    void deliver();

    std::shared_ptr<Engine> const engine_;
    Event_type const& event_;
    Sample_handler const handler_;
    std::shared_ptr<Strand> const strand_;
    base::Mutex mutex_;
    std::deque<Sample> waiting_ GUARDED_BY(mutex_);
    std::deque<dds_time_t> taken_ GUARDED_BY(mutex_);  // as many as a writer repeats at most
    std::unique_ptr<Reader> reader_ GUARDED_BY(mutex_);
};

}  // namespace ara::com::dds

#endif
