#ifndef STATEMANAGER_SERVICES_DSA_INTERFACE_H
#define STATEMANAGER_SERVICES_DSA_INTERFACE_H

#include "base/mutex.h"
#include "statemanager/smw/shared_memory_reboot.h"
#include "ximo/ap/statemanager/dsa_interface_skeleton.h"

#include <cstdint>
#include <memory>
#include <string>

namespace ximo::ap::statemanager::services {

/// The service through which diagnostics restarts this virtual machine or the co-processor. There is one; its instance
/// is "DSA_Interface".
class Dsa_interface : public skeleton::DSAInterfaceSkeleton {
 public:
    /// Restarts by words into the control file at `restart_command_path`.
    explicit Dsa_interface(std::string restart_command_path);

    /// Restarts through `writer`.
    explicit Dsa_interface(std::unique_ptr<smw::Shared_memory_reboot>&& writer);

    ~Dsa_interface() override;

    /// 1 restarts the virtual machine and 5 the co-processor, one request after the other; every other value is only
    /// logged. The answer is a success in any case, unless the writer throws.
    ximo::com::Future<void> RequestRestart(std::uint8_t RestartType) override;

    /// The answer: a future that is ready.
    virtual ximo::com::Future<void> promise_get_future();

 private:
    void restart_vm();
    void restart_m3();

    base::Mutex mutex_;
    std::unique_ptr<smw::Shared_memory_reboot> const writer_ PT_GUARDED_BY(mutex_);
};

}  // namespace ximo::ap::statemanager::services

#endif
