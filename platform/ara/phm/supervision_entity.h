#ifndef ARA_PHM_SUPERVISION_ENTITY_H
#define ARA_PHM_SUPERVISION_ENTITY_H

#include "ara/core/service_notification.h"
#include "ara/phm/phm_client.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace ara::phm {

/// The part of a process that health management watches.
class SupervisionEntityInterface {
 public:
    SupervisionEntityInterface() = default;
    virtual ~SupervisionEntityInterface() = default;
    SupervisionEntityInterface(SupervisionEntityInterface const&) = delete;
    SupervisionEntityInterface& operator=(SupervisionEntityInterface const&) = delete;

    /// Reports that the process passed a checkpoint. Throws `std::runtime_error` when the report can't be delivered.
    virtual void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) = 0;
};

/// Supervision by the service manager's watchdog: a checkpoint is one WATCHDOG=1 to the socket that the environment
/// names in NOTIFY_SOCKET, unless the last one was sent a moment ago. A process that is not supervised (no such
/// variable) reports to nobody and succeeds. Used by one thread.
///
/// A report waits for nothing. One that finds the service manager's queue full, or the process without a descriptor or
/// memory for it, is owed, and the next one is it: it fails only when none could go out for half of WATCHDOG_USEC. It
/// fails at once when nobody listens, or for any other reason that stays.
class SupervisionEntity : public SupervisionEntityInterface {
 public:
    /// How close beats may follow each other. The service manager reads them before everything else that it does: a
    /// process that reports without a pause would keep it from all other work.
    static constexpr std::chrono::milliseconds k_shortest_interval{5};

    explicit SupervisionEntity(Phm_client_interface const& client);

    void ReportCheckpoint(std::uint32_t checkpoint, std::uint32_t instance) override;

 private:
    static constexpr std::chrono::seconds k_longest_step{1};

    bool is_refused_for_too_long(std::chrono::steady_clock::time_point now);

    std::string instance_id_;
    ara::core::Beats beats_;
    std::optional<std::chrono::steady_clock::time_point> last_beat_;
    std::optional<std::chrono::steady_clock::time_point> last_refusal_;
    std::chrono::steady_clock::duration refused_for_{};
};

}  // namespace ara::phm

#endif
