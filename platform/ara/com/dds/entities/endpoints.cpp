#include "ara/com/dds/entities/endpoints.h"

#include "ara/log/logging.h"

#include <memory>
#include <new>
#include <utility>

// What the engine calls has the attribute no_sanitize_thread: ThreadSanitizer notes the caller of each function that it
// has instrumented, and leaves alone all that the engine is a caller of (dds_binding.cpp). So it sees what follows as
// begun here.

namespace ara::com::dds {

namespace {

struct Listener_deleter {
    void operator()(dds_listener_t* listener) const noexcept { dds_delete_listener(listener); }
};
using Listener = std::unique_ptr<dds_listener_t, Listener_deleter>;

[[gnu::no_sanitize_thread]] void on_reader_matched(dds_entity_t /*reader*/,
                                                   dds_subscription_matched_status_t /*status*/, void* handler) {
    (*static_cast<Matched_handler const*>(handler))();
}

[[gnu::no_sanitize_thread]] void on_writer_matched(dds_entity_t /*writer*/, dds_publication_matched_status_t /*status*/,
                                                   void* handler) {
    (*static_cast<Matched_handler const*>(handler))();
}

// Nothing can be thrown through the engine, which would keep its locks.
void tell_of_no_memory() {
    ara::log::LogError() << "no memory for what has arrived";
}

dds_entity_t make_publisher(Participant& participant, Channel const& channel) {
    return dds_create_publisher(participant.entity(), partition_quality(channel.partition).get(), nullptr);
}

dds_entity_t make_subscriber(Participant& participant, Channel const& channel) {
    return dds_create_subscriber(participant.entity(), partition_quality(channel.partition).get(), nullptr);
}

Listener writer_listener(Matched_handler const& matched) {
    Listener listener(dds_create_listener(nullptr));
    if (matched) {
        dds_lset_publication_matched_arg(listener.get(), on_writer_matched, const_cast<Matched_handler*>(&matched),
                                         true);
    }
    return listener;
}

Listener reader_listener(dds_on_data_available_fn on_data, void* reader, Matched_handler const& matched) {
    Listener listener(dds_create_listener(reader));
    dds_lset_data_available(listener.get(), on_data);
    if (matched) {
        dds_lset_subscription_matched_arg(listener.get(), on_reader_matched, const_cast<Matched_handler*>(&matched),
                                          true);
    }
    return listener;
}

}  // namespace

Writer::Writer(Participant& participant, Channel const& channel, Quality const& quality, Matched_handler matched)
    : matched_(std::move(matched)),
      publisher_(make_publisher(participant, channel), "There can be no publisher"),
      writer_(dds_create_writer(publisher_.get(), participant.topic(channel.type), quality.get(),
                                writer_listener(matched_).get()),
              "There can be no writer") {}

void Writer::write(void const* sample) const {
    write(sample, std::chrono::system_clock::now());
}

void Writer::write(void const* sample, std::chrono::system_clock::time_point time) const {
    if (auto const code = dds_write_ts(entity(), sample, std::chrono::nanoseconds(time.time_since_epoch()).count());
        code < 0) {
        throw_engine_error("Nothing could be sent", code);
    }
}

Reader::Reader(Participant& participant, Channel const& channel, Quality const& quality, Received_handler received,
               Matched_handler matched, Admission admits)
    : type_(channel.type),
      received_(std::move(received)),
      matched_(std::move(matched)),
      admits_(std::move(admits)),
      own_topic_(make_own_topic(participant)),
      subscriber_(make_subscriber(participant, channel), "There can be no subscriber"),
      reader_(dds_create_reader(subscriber_.get(), admits_ ? own_topic_.get() : participant.topic(channel.type),
                                quality.get(), reader_listener(on_data, this, matched_).get()),
              "There can be no reader") {}

// A filter counts for all readers of a topic's entity, and for its writers.
Entity Reader::make_own_topic(Participant& participant) {
    if (!admits_) {
        return {};
    }
    auto topic = participant.make_topic(type_);
    dds_topic_filter filter{};
    filter.mode = DDS_TOPIC_FILTER_SAMPLE_SAMPLEINFO_ARG;
    filter.f.sample_sampleinfo_arg = is_admitted;
    filter.arg = this;
    if (auto const code = dds_set_topic_filter_extended(topic.get(), &filter); code < 0) {
        throw_engine_error("There can be no filter", code);
    }
    return topic;
}

[[gnu::no_sanitize_thread]] bool Reader::is_admitted(void const* sample, dds_sample_info_t const* info, void* self) {
    try {
        return static_cast<Reader const*>(self)->admits_(sample, info->publication_handle);
    } catch (std::bad_alloc const&) {
        tell_of_no_memory();
        return false;
    }
}

[[gnu::no_sanitize_thread]] void Reader::on_data(dds_entity_t reader, void* self) {
    try {
        static_cast<Reader const*>(self)->deliver(reader);
    } catch (std::bad_alloc const&) {
        tell_of_no_memory();
    }
}

// The handler may run before the constructor knows its reader. Making a sample and freeing it costs more than a look
// that finds nothing, so the one that was made in vain is there for the next time. One that was filled never is: where
// the next has another case of a union, the engine forgets what it owned.
void Reader::deliver(dds_entity_t reader) const {
    auto sample = unused_sample();
    for (;;) {
        if (!sample) {
            sample = make_sample(type_);
        }
        void* slot = sample.get();
        dds_sample_info_t info;
        auto const taken = dds_take(reader, &slot, &info, 1, 1);
        if (taken == 0) {
            keep_unused(std::move(sample));
        }
        if (taken <= 0) {
            return;
        }
        received_(std::move(sample), info);
    }
}

Sample Reader::unused_sample() const {
    base::Lock_guard const lock(mutex_);
    return std::move(unused_);
}

void Reader::keep_unused(Sample sample) const {
    base::Lock_guard const lock(mutex_);
    std::swap(unused_, sample);
}

}  // namespace ara::com::dds
