#ifndef TESTS_SUPPORT_PLAYED_SAMPLE_H
#define TESTS_SUPPORT_PLAYED_SAMPLE_H

#include <string>

#include <dds/dds.h>

namespace test_support::played_dds {

/// A copy of a sample that needs no memory of the writer's.
struct Packed {
    dds_topic_descriptor_t const* type{nullptr};
    std::string octets;
    std::string key;  // of its instance
    dds_time_t time{0};
};

/// A sample on its way to a reader.
struct Arrival {
    Packed sample;
    dds_instance_state_t state{};
    dds_instance_handle_t writer{};
};

bool pack(dds_topic_descriptor_t const& type, void const* sample, dds_time_t time, Packed& packed);

/// The sample is all zero before.
void unpack(Packed const& packed, void* sample);

/// What is told of an instance that has ended: its key.
Packed key_alone(Packed const& packed);

/// A sample of octets as they go over the wire; false when they are none of that type.
bool pack_octets(dds_topic_descriptor_t const& type, std::string octets, dds_time_t time, Packed& packed);

dds_time_t now();
dds_sample_info_t info_of(Arrival const& arrival);

}  // namespace test_support::played_dds

#endif
