#include "ara/com/dds/events/event_sender.h"

#include "tarq/com/exception.h"

#include <utility>

namespace ara::com::dds {

void Event_sender::open(Event_type const& event, InstanceIdentifier const& instance) {
    auto const opening = engine_->adopt(weak_from_this());
    auto writer = std::make_shared<Writer>(engine_->participant(), Channel{event.sample, instance.ToString()},
                                           event_writer_quality(event.is_field));
    base::Lock_guard const lock(mutex_);
    writer_ = std::move(writer);
}

void Event_sender::send(void const* sample, std::chrono::system_clock::time_point set) {
    std::shared_ptr<Writer> writer;
    {
        base::Lock_guard const lock(mutex_);
        writer = writer_;
    }
    if (!writer) {
        throw tarq::com::Infrastructure_exception("The communication runtime has ended");
    }
    writer->write(sample, set);
}

void Event_sender::close() {
    auto const closing = engine_->close_part();
    std::shared_ptr<Writer> writer;
    base::Lock_guard const lock(mutex_);
    writer = std::move(writer_);
}

}  // namespace ara::com::dds
