#ifndef STATEMANAGER_SMW_SHARED_MEMORY_UPDATE_H
#define STATEMANAGER_SMW_SHARED_MEMORY_UPDATE_H

#include "statemanager/smw/shared_memory_writer_interface.h"

#include <string>

namespace ximo::ap::statemanager::smw {

/// Tells the hypervisor the state of this machine: one word for each state, into the status file. A word that could
/// not be written is logged; the states go on without it.
class Shared_memory_update : public Shared_memory_writer_interface {
 public:
    explicit Shared_memory_update(std::string path);

    virtual void starting_up();
    virtual void running();
    virtual void shutting_down();
    virtual void run_nm_controlled();
    virtual void post_run();
    virtual void preparing();
    virtual void prepared_4_sd();
    virtual void resuming();

 private:
    void write_state(char const* word, char const* failure);
};

}  // namespace ximo::ap::statemanager::smw

#endif
