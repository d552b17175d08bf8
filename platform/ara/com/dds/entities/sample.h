#ifndef ARA_COM_DDS_ENTITIES_SAMPLE_H
#define ARA_COM_DDS_ENTITIES_SAMPLE_H

#include "ara/com/service_type.h"

#include <memory>

#include <dds/dds.h>

namespace ara::com::dds {

inline dds_topic_descriptor_t const& descriptor_of(Topic_type const& type) {
    return *static_cast<dds_topic_descriptor_t const*>(type.descriptor);
}

struct Sample_deleter {
    dds_topic_descriptor_t const* descriptor;
    void operator()(void* sample) const noexcept { dds_sample_free(sample, descriptor, DDS_FREE_ALL); }
};

/// A sample that owns its contents.
using Sample = std::unique_ptr<void, Sample_deleter>;

/// All zero.
inline Sample make_sample(Topic_type const& type) {
    return {dds_alloc(type.size), Sample_deleter{&descriptor_of(type)}};
}

}  // namespace ara::com::dds

#endif
