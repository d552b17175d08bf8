#include "statemanager/smw/shared_memory_update.h"

#include "ara/log/logging.h"
#include "status/driver_status.h"

#include <utility>

namespace ximo::ap::statemanager::smw {

Shared_memory_update::Shared_memory_update(std::string path) : Shared_memory_writer_interface(std::move(path)) {}

void Shared_memory_update::starting_up() {
    write_state("startingup", "Failed to set startingup state in shared memory!");
}

void Shared_memory_update::running() {
    write_state("running", "Failed to set running state in shared memory!");
}

void Shared_memory_update::shutting_down() {
    write_state("shuttingdown", "Failed to set shuttingdown state in shared memory!");
}

void Shared_memory_update::run_nm_controlled() {
    write_state("runnmcontrolled", "Failed to set runnmcontrolled state in shared memory!");
}

void Shared_memory_update::post_run() {
    write_state("postrun", "Failed to set postrun state in shared memory!");
}

void Shared_memory_update::preparing() {
    write_state("preparing", "Failed to set preparing state in shared memory!");
}

void Shared_memory_update::prepared_4_sd() {
    write_state("prepared4sd", "Failed to set prepared4sd state in shared memory!");
}

void Shared_memory_update::resuming() {
    write_state("resuming", "Failed to set resuming state in shared memory!");
}

void Shared_memory_update::write_state(char const* word, char const* failure) {
    bool const written = write_to_memory(word);
    auto const fate = written ? status::Word_fate::written : status::Word_fate::refused;
    status::state_word(word, has_file() ? fate : status::Word_fate::no_file);
    if (!written) {
        ara::log::LogVerbose() << failure;
    }
}

}  // namespace ximo::ap::statemanager::smw
