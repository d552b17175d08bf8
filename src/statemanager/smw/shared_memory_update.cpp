#include "statemanager/smw/shared_memory_update.h"

#include "ara/log/logging.h"

#include <utility>

namespace ximo::ap::statemanager::smw {

Shared_memory_update::Shared_memory_update(std::string path) : Shared_memory_writer_interface(std::move(path)) {}

void Shared_memory_update::starting_up() {
    write_state("startingup");
}

void Shared_memory_update::running() {
    write_state("running");
}

void Shared_memory_update::shutting_down() {
    write_state("shuttingdown");
}

void Shared_memory_update::run_nm_controlled() {
    write_state("runnmcontrolled");
}

void Shared_memory_update::post_run() {
    write_state("postrun");
}

void Shared_memory_update::preparing() {
    write_state("preparing");
}

void Shared_memory_update::prepared_4_sd() {
    write_state("prepared4sd");
}

void Shared_memory_update::resuming() {
    write_state("resuming");
}

void Shared_memory_update::write_state(std::string const& word) {
    if (!write_to_memory(word)) {
        ara::log::LogVerbose() << "Failed to set " + word + " state in shared memory!";
    }
}

}  // namespace ximo::ap::statemanager::smw
