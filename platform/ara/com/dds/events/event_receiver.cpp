#include "ara/com/dds/events/event_receiver.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace ara::com::dds {

namespace {

// When more wait for a handler that does not end, the oldest are given up.
constexpr std::size_t k_most_waiting = 1000;

}  // namespace

Event_receiver::Event_receiver(std::shared_ptr<Engine> engine, Event_type const& event, Sample_handler handler)
    : engine_(std::move(engine)),
      event_(event),
      handler_(std::move(handler)),
      strand_(std::make_shared<Strand>(engine_->workers())) {}

void Event_receiver::open(InstanceIdentifier const& instance) {
    auto const opening = engine_->adopt(weak_from_this());
    auto reader = std::make_unique<Reader>(engine_->participant(), Channel{event_.sample, instance.ToString()},
                                           event_reader_quality(event_.is_field),
                                           [this](Sample sample, dds_sample_info_t const& info) {
                                               if (info.valid_data) {
                                                   received(std::move(sample), info.source_timestamp);
                                               }
                                           });
    base::Lock_guard const lock(mutex_);
    reader_ = std::move(reader);
}

void Event_receiver::close() {
    auto const closing = engine_->close_part();
    std::unique_ptr<Reader> reader;
    {
        base::Lock_guard const lock(mutex_);
        reader = std::move(reader_);
    }
    reader.reset();
    strand_->close();
}

bool Event_receiver::is_repeated(dds_time_t set) {
    if (std::find(taken_.begin(), taken_.end(), set) != taken_.end()) {
        return true;
    }
    taken_.push_back(set);
    if (taken_.size() > k_newest_samples) {
        taken_.pop_front();
    }
    return false;
}

void Event_receiver::received(Sample sample, dds_time_t set) {
    {
        base::Lock_guard const lock(mutex_);
        if (event_.is_field && is_repeated(set)) {
            return;
        }
        waiting_.push_back(std::move(sample));
        if (waiting_.size() > k_most_waiting) {
            waiting_.pop_front();
            return;
        }
    }
    strand_->post([weak = weak_from_this()] {
        if (auto const self = weak.lock()) {
            self->deliver();
        }
    });
}

// As many times as samples wait.
void Event_receiver::deliver() {
    Sample sample;
    {
        base::Lock_guard const lock(mutex_);
        sample = std::move(waiting_.front());
        waiting_.pop_front();
    }
    handler_(sample.get());
}

}  // namespace ara::com::dds
