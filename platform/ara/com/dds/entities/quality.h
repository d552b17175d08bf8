#ifndef ARA_COM_DDS_ENTITIES_QUALITY_H
#define ARA_COM_DDS_ENTITIES_QUALITY_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include <dds/dds.h>

/// The qualities of service of all topics, in one place.
namespace ara::com::dds {

struct Quality_deleter {
    void operator()(dds_qos_t* quality) const noexcept { dds_delete_qos(quality); }
};
using Quality = std::unique_ptr<dds_qos_t, Quality_deleter>;

/// How long a writer waits for room in its history, which a peer that doesn't read fills: a caller waits for its own
/// server; a server does not wait long for one of its clients.
inline constexpr std::chrono::milliseconds k_longest_write{100};
inline constexpr std::chrono::milliseconds k_longest_reply_write{50};

/// What a writer of events keeps: enough for the samples of one burst to be repeated when the network loses some.
inline constexpr std::int32_t k_newest_samples = 16;

/// Requests and replies: reliable, each is kept until it is delivered, nothing for those who come later.
Quality call_quality(std::chrono::milliseconds longest_write);

/// Offers: reliable, the newest of each key, also for those who come later.
Quality offer_quality();

/// Samples of events and fields: reliable; a writer keeps the newest few, so that nobody holds it up; of a field the
/// newest is for those who come later.
Quality event_writer_quality(bool is_field);
Quality event_reader_quality(bool is_field);

/// For a publisher or subscriber.
Quality partition_quality(std::string const& partition);

}  // namespace ara::com::dds

#endif
