#ifndef ARA_COM_DDS_OFFERS_ANNOUNCER_H
#define ARA_COM_DDS_OFFERS_ANNOUNCER_H

#include "ara/com/dds/entities/endpoints.h"
#include "base/mutex.h"

#include <condition_variable>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace ara::com::dds {

/// Tells everybody what this process offers. Thread-safe.
class Announcer {
 public:
    explicit Announcer(Participant& participant) : participant_(participant) {}

    /// First an instance is claimed; the end of a withdrawal that others may have heard of already is waited for.
    /// Throws `tarq::com::Infrastructure_exception` when this process has it already.
    void claim(std::string const& interface_name, std::string const& instance);

    /// Whether this process has claimed it. May be asked under locks of the engine.
    bool claims(std::string const& interface_name, std::string const& instance);

    /// Tells of a claimed instance. Throws `tarq::com::Infrastructure_exception`.
    void announce(std::string const& interface_name, std::string const& instance);

    /// Ends offer and claim.
    void withdraw(std::string const& interface_name, std::string const& instance) noexcept;

 private:
    using Name = std::pair<std::string, std::string>;

    std::shared_ptr<Writer> writer();

    Participant& participant_;
    base::Mutex mutex_;
    std::shared_ptr<Writer> writer_ GUARDED_BY(mutex_);  // once there was an offer
    base::Mutex claims_mutex_;                           // also taken under locks of the engine, so nothing is called
    std::set<Name> claimed_ GUARDED_BY(claims_mutex_);
    std::set<Name> withdrawing_ GUARDED_BY(claims_mutex_);
    std::condition_variable_any withdrawn_;
};

}  // namespace ara::com::dds

#endif
