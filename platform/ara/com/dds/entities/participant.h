#ifndef ARA_COM_DDS_ENTITIES_PARTICIPANT_H
#define ARA_COM_DDS_ENTITIES_PARTICIPANT_H

#include "ara/com/dds/entities/entity.h"
#include "ara/com/dds/entities/guid.h"
#include "ara/com/service_type.h"
#include "base/mutex.h"

#include <map>
#include <memory>
#include <string>

namespace ara::com::dds {

/// The process's place in its DDS domain: the domain as the environment's CYCLONEDDS_URI configures it or, without
/// that, domain 0 on the loopback interface only. Thread-safe.
class Participant {
 public:
    /// Starts the engine with its threads; throws `tarq::com::Infrastructure_exception`.
    Participant();

    dds_entity_t entity() const noexcept { return participant_.get(); }
    Guid const& identity() const noexcept { return identity_; }

    /// The topic that has the name of its type, with a slash for two colons. Throws
    /// `tarq::com::Infrastructure_exception`.
    dds_entity_t topic(Topic_type const& type);

    /// One more entity for the same topic. Throws as `topic` does.
    Entity make_topic(Topic_type const& type) const;

 private:
    std::shared_ptr<Entity> const domain_;  // null where the environment configures it
    Entity const participant_;
    Guid const identity_;
    base::Mutex mutex_;
    std::map<std::string, Entity> topics_ GUARDED_BY(mutex_);
};

}  // namespace ara::com::dds

#endif
