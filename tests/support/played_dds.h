#ifndef TESTS_SUPPORT_PLAYED_DDS_H
#define TESTS_SUPPORT_PLAYED_DDS_H

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <dds/dds.h>

/// DDS within one process: those functions of the engine that the binding uses, in front of libddsc's in each program
/// that has `PLAYED_DDS` among its sources. All participants are in one domain. Endpoints match by topic and partition;
/// a reader gets copies; a transient-local writer keeps the newest sample of each key for those who come later; a topic
/// may have a filter.
///
/// The threads of the test are the engine's. Whoever makes, writes or deletes calls the listeners of the others before
/// it returns, one at a time of each reader or writer, and ThreadSanitizer sees all of it. A deletion waits for the
/// listeners of what is deleted.
namespace test_support::played_dds {

/// What goes wrong. Set anew for each test.
struct Faults {
    std::atomic<int> writers_until_failure{-1};  ///< one can't be made after so many; negative: all can
    std::atomic<int> readers_that_fail{0};       ///< so many of the next can't be made
    std::atomic<int> writes_that_fail{0};        ///< so many of the next, on all topics but the one of offers
    std::atomic<std::function<void()> const*> after_look{nullptr};  ///< at the writers of a reader; called once
};
Faults& faults();

/// All that are there.
std::vector<dds_entity_t> participants();

/// Nobody else hears of what the participant has, nor it of the others', until it is found again. Both may be repeated,
/// also for one that has gone.
void lose(dds_entity_t participant);
void find(dds_entity_t participant);

/// The configuration of the domain that was made last, for the first who asks.
std::string take_configuration();

/// Writes what somebody may send: a sample as it goes over the wire (XCDR2, little-endian, without its header). False
/// when the octets are no sample of the writer's type, which the engine drops.
bool write_octets(dds_entity_t writer, std::string octets);

}  // namespace test_support::played_dds

#endif
