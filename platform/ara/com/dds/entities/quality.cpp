#include "ara/com/dds/entities/quality.h"

namespace ara::com::dds {

namespace {

// An object that goes does not dispose what it wrote: only a withdrawal does, so that it differs from a loss.
Quality reliable(std::chrono::milliseconds longest_write) {
    Quality quality(dds_create_qos());
    dds_qset_reliability(quality.get(), DDS_RELIABILITY_RELIABLE, std::chrono::nanoseconds(longest_write).count());
    dds_qset_writer_data_lifecycle(quality.get(), false);
    return quality;
}

void set_durability(dds_qos_t* quality, bool is_field) {
    dds_qset_durability(quality, is_field ? DDS_DURABILITY_TRANSIENT_LOCAL : DDS_DURABILITY_VOLATILE);
}

}  // namespace

Quality call_quality(std::chrono::milliseconds longest_write) {
    auto quality = reliable(longest_write);
    dds_qset_history(quality.get(), DDS_HISTORY_KEEP_ALL, 0);
    return quality;
}

Quality offer_quality() {
    auto quality = reliable(k_longest_write);
    dds_qset_durability(quality.get(), DDS_DURABILITY_TRANSIENT_LOCAL);
    dds_qset_history(quality.get(), DDS_HISTORY_KEEP_LAST, 1);
    return quality;
}

Quality event_writer_quality(bool is_field) {
    auto quality = reliable(k_longest_write);
    set_durability(quality.get(), is_field);
    dds_qset_history(quality.get(), DDS_HISTORY_KEEP_LAST, k_newest_samples);
    dds_qset_durability_service(quality.get(), 0, DDS_HISTORY_KEEP_LAST, 1, DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED,
                                DDS_LENGTH_UNLIMITED);
    return quality;
}

Quality event_reader_quality(bool is_field) {
    auto quality = reliable(k_longest_write);
    set_durability(quality.get(), is_field);
    dds_qset_history(quality.get(), DDS_HISTORY_KEEP_ALL, 0);
    return quality;
}

Quality partition_quality(std::string const& partition) {
    Quality quality(dds_create_qos());
    dds_qset_partition1(quality.get(), partition.c_str());
    return quality;
}

}  // namespace ara::com::dds
