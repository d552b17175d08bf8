#ifndef ARA_COM_DDS_ENTITIES_ENDPOINTS_H
#define ARA_COM_DDS_ENTITIES_ENDPOINTS_H

#include "ara/com/dds/entities/entity.h"
#include "ara/com/dds/entities/participant.h"
#include "ara/com/dds/entities/quality.h"
#include "ara/com/dds/entities/sample.h"
#include "base/mutex.h"

#include <chrono>
#include <functional>
#include <string>

namespace ara::com::dds {

/// Where samples of one kind go from writers to readers: a topic, and a partition of it; empty for the one that has no
/// name.
struct Channel {
    Topic_type type;
    std::string partition;
};

/// Called by a thread of the engine, or by the one of this process that writes. So it must neither block nor call user
/// code, nor may its caller hold a lock that it takes while using a reader or writer.
using Matched_handler = std::function<void()>;
/// Decides on each sample before it is kept, under locks of the engine. Without data nobody is asked.
using Admission = std::function<bool(void const* sample, dds_instance_handle_t writer)>;
using Received_handler = std::function<void(Sample sample, dds_sample_info_t const& info)>;

/// Thread-safe. Constructors throw `tarq::com::Infrastructure_exception`.
class Writer {
 public:
    Writer(Participant& participant, Channel const& channel, Quality const& quality, Matched_handler matched = {});

    dds_entity_t entity() const noexcept { return writer_.get(); }

    /// Blocks for as long as its quality allows. Throws `tarq::com::Infrastructure_exception`.
    void write(void const* sample) const;
    /// With the time that readers are told.
    void write(void const* sample, std::chrono::system_clock::time_point time) const;

 private:
    Matched_handler const matched_;
    Entity const publisher_;
    Entity const writer_;
};

/// Takes each sample as it comes and gives it to the handler. Destruction waits for handlers that run.
class Reader {
 public:
    Reader(Participant& participant, Channel const& channel, Quality const& quality, Received_handler received,
           Matched_handler matched = {}, Admission admits = {});

    dds_entity_t entity() const noexcept { return reader_.get(); }

 private:
    static void on_data(dds_entity_t reader, void* self);
    static bool is_admitted(void const* sample, dds_sample_info_t const* info, void* self);
    Entity make_own_topic(Participant& participant);
    void deliver(dds_entity_t reader) const;
    Sample unused_sample() const;
    void keep_unused(Sample sample) const;

    Topic_type const type_;
    Received_handler const received_;
    Matched_handler const matched_;
    Admission const admits_;
    mutable base::Mutex mutex_;
    mutable Sample unused_ GUARDED_BY(mutex_);  // may be none
    Entity const own_topic_;                    // none without an admission
    Entity const subscriber_;
    Entity const reader_;
};

}  // namespace ara::com::dds

#endif
