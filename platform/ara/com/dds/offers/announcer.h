#ifndef ARA_COM_DDS_OFFERS_ANNOUNCER_H
#define ARA_COM_DDS_OFFERS_ANNOUNCER_H

#include "ara/com/dds/entities/endpoints.h"
#include "base/condition.h"
#include "base/mutex.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ara::com::dds {

/// Tells everybody what this process offers. Thread-safe.
class Announcer {
 public:
    explicit Announcer(Participant& participant) : participant_(participant) {}

    /// First an instance is claimed; the end of a withdrawal that others may have heard of already is waited for.
    /// Throws `tarq::com::Infrastructure_exception` when this process has it already.
    void claim(std::string_view interface_name, std::string_view instance);

    /// Whether this process has claimed it. May be asked under locks of the engine.
    bool claims(std::string_view interface_name, std::string_view instance);

    /// Tells of a claimed instance. Throws `tarq::com::Infrastructure_exception`.
    void announce(std::string_view interface_name, std::string_view instance);

    /// Ends offer and claim. Needs no memory.
    void withdraw(std::string_view interface_name, std::string_view instance) noexcept;

 private:
    struct Claim {
        std::string interface_name;
        std::string instance;
        bool is_withdrawn{false};  ///< others may have heard of it already
    };
    using Claims = std::vector<Claim>;

    std::shared_ptr<Writer> writer();
    Claims::iterator find(std::string_view interface_name, std::string_view instance) REQUIRES(claims_mutex_);

    Participant& participant_;
    base::Mutex mutex_;
    std::shared_ptr<Writer> writer_ GUARDED_BY(mutex_);  // once there was an offer
    base::Mutex claims_mutex_;                           // also taken under locks of the engine, so nothing is called
    Claims claims_ GUARDED_BY(claims_mutex_);
    base::Condition withdrawn_;
};

}  // namespace ara::com::dds

#endif
