// Samples as the engine's own functions serialise them; the only type with a key is that of offers.
#include "support/played_sample.h"

#include "service_offer.h"

#include <chrono>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

#include <dds/ddsi/ddsi_cdrstream.h>

namespace test_support::played_dds {

namespace {

constexpr std::uint32_t k_xcdr2 = 2;

std::string key_of(dds_topic_descriptor_t const& type, void const* sample) {
    if (type.m_nkeys == 0) {
        return {};
    }
    auto const& offer = *static_cast<ara_com_ServiceOffer const*>(sample);
    return std::string(offer.interface_name) + '\n' + offer.instance_name + '\n' +
           std::string(std::begin(offer.participant), std::end(offer.participant));
}

// As the engine does with what it gets from the network.
bool is_sample(dds_topic_descriptor_t const& type, std::string& octets) {
    std::uint32_t read = 0;
    return dds_stream_normalize_data(octets.data(), &read, static_cast<std::uint32_t>(octets.size()), false, k_xcdr2,
                                     type.m_ops) != nullptr;
}

}  // namespace

bool pack(dds_topic_descriptor_t const& type, void const* sample, dds_time_t time, Packed& packed) {
    dds_ostream_t stream;
    dds_ostream_init(&stream, 0, k_xcdr2);
    bool const fits = dds_stream_write(&stream, static_cast<char const*>(sample), type.m_ops) != nullptr;
    if (fits) {
        packed = {&type, {reinterpret_cast<char const*>(stream.m_buffer), stream.m_index}, key_of(type, sample), time};
    }
    dds_ostream_fini(&stream);
    return fits;
}

void unpack(Packed const& packed, void* sample) {
    dds_istream_t stream;
    dds_istream_init(&stream, static_cast<std::uint32_t>(packed.octets.size()), packed.octets.data(), k_xcdr2);
    dds_stream_read(&stream, static_cast<char*>(sample), packed.type->m_ops);
}

Packed key_alone(Packed const& packed) {
    ara_com_ServiceOffer offer{};
    unpack(packed, &offer);
    offer.version = 0;
    offer.process = 0;
    offer.process_space[0] = '\0';
    Packed key;
    pack(*packed.type, &offer, packed.time, key);
    return key;
}

dds_time_t now() {
    return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

dds_sample_info_t info_of(Arrival const& arrival) {
    dds_sample_info_t info{};
    info.instance_state = arrival.state;
    info.valid_data = arrival.state == DDS_IST_ALIVE;
    info.source_timestamp = arrival.sample.time;
    info.publication_handle = arrival.writer;
    return info;
}

bool pack_octets(dds_topic_descriptor_t const& type, std::string octets, dds_time_t time, Packed& packed) {
    if (!is_sample(type, octets)) {
        return false;
    }
    packed = {&type, std::move(octets), {}, time};
    std::unique_ptr<void, void (*)(void*)> const sample(dds_alloc(type.m_size), dds_free);
    unpack(packed, sample.get());
    packed.key = key_of(type, sample.get());
    dds_sample_free(sample.get(), &type, DDS_FREE_CONTENTS);
    return true;
}

}  // namespace test_support::played_dds
