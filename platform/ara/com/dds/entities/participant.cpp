#include "ara/com/dds/entities/participant.h"

#include "ara/com/dds/entities/engine_log.h"
#include "ara/com/dds/entities/sample.h"

#include <cstdlib>

namespace ara::com::dds {

namespace {

constexpr dds_domainid_t k_local_domain = 0;

// Multicast is off: on the loopback interface each participant announces itself to every index instead. With the
// engine's default of 9 the tenth process of a machine would find no index. A lease of 20 seconds: a machine or a
// process that stands still for less is not given up, and whose process ends on this machine is told of by the process
// watch. Announcements every 800 ms, which the engine would draw out with the lease: whoever was given up is soon found
// again; with 50 processes a shorter time would take more than 1 % of a core from each when idle.
// What is sent to a reader that has not yet heard the first heartbeat is repeated once the reader complains, and a
// writer that goes waits for the last acknowledgement, which a heartbeat asks for: with the engine's 100 ms each, many
// a first call took that long. Nothing beats while all is acknowledged. A complaint that was lost itself is repeated
// after 10 ms, not the engine's three seconds, which are more than a call has. The engine stops a writer at 30 kB that
// are not acknowledged; a burst of a thousand replies is more.
// The engine receives into memory that it lets go of when the rest of it may be too short for the longest packet, 128
// KiB, and its own megabyte is touched page by page for hours.
constexpr char const* k_local_configuration = R"(<CycloneDDS><Domain id="any">
<General>
 <Interfaces><NetworkInterface name="lo" multicast="false"/></Interfaces>
 <AllowMulticast>false</AllowMulticast>
</General>
<Discovery>
 <ParticipantIndex>auto</ParticipantIndex>
 <MaxAutoParticipantIndex>60</MaxAutoParticipantIndex>
 <Peers><Peer address="127.0.0.1"/></Peers>
 <LeaseDuration>20s</LeaseDuration>
 <SPDPInterval>800ms</SPDPInterval>
</Discovery>
<Internal>
 <PreEmptiveAckDelay>0s</PreEmptiveAckDelay>
 <NackDelay>1ms</NackDelay>
 <AutoReschedNackDelay>10ms</AutoReschedNackDelay>
 <HeartbeatInterval min="5ms" minsched="5ms" max="1s">5ms</HeartbeatInterval>
 <WriterLingerDuration>20ms</WriterLingerDuration>
 <Watermarks><WhcAdaptive>false</WhcAdaptive><WhcHigh>1MB</WhcHigh><WhcHighInit>1MB</WhcHighInit></Watermarks>
</Internal>
<Sizing><ReceiveBufferSize>192 KiB</ReceiveBufferSize></Sizing>
</Domain></CycloneDDS>)";

bool is_configured_by_environment() {
    char const* uri = std::getenv("CYCLONEDDS_URI");
    return uri != nullptr && *uri != '\0';
}

// All participants of a process are in the one domain, which goes with the last of them.
std::shared_ptr<Entity> local_domain() {
    static base::Mutex mutex;
    static std::weak_ptr<Entity> current;
    base::Lock_guard const lock(mutex);
    auto domain = current.lock();
    if (!domain) {
        domain = std::make_shared<Entity>(dds_create_domain(k_local_domain, k_local_configuration),
                                          "The communication engine does not start");
        current = domain;
    }
    return domain;
}

// Colons are no part of a topic's name.
std::string topic_name(dds_topic_descriptor_t const& type) {
    std::string name = type.m_typename;
    for (auto colons = name.find("::"); colons != std::string::npos; colons = name.find("::", colons)) {
        name.replace(colons, 2, "/");
    }
    return name;
}

std::shared_ptr<Entity> configured_domain() {
    log_what_the_engine_tells();
    return is_configured_by_environment() ? nullptr : local_domain();
}

}  // namespace

Participant::Participant()
    : domain_(configured_domain()),
      participant_(dds_create_participant(domain_ ? k_local_domain : DDS_DOMAIN_DEFAULT, nullptr, nullptr),
                   "The communication engine does not start"),
      identity_(guid_of(participant_.get())) {}

dds_entity_t Participant::topic(Topic_type const& type) {
    auto const* const name = descriptor_of(type).m_typename;
    base::Lock_guard const lock(mutex_);
    auto& topic = topics_[name];
    if (topic.get() == 0) {
        topic = make_topic(type);
    }
    return topic.get();
}

Entity Participant::make_topic(Topic_type const& type) const {
    auto const& descriptor = descriptor_of(type);
    auto const name = topic_name(descriptor);
    return {dds_create_topic(entity(), &descriptor, name.c_str(), nullptr, nullptr), "There can be no topic " + name};
}

}  // namespace ara::com::dds
