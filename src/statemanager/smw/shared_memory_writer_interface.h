#ifndef STATEMANAGER_SMW_SHARED_MEMORY_WRITER_INTERFACE_H
#define STATEMANAGER_SMW_SHARED_MEMORY_WRITER_INTERFACE_H

#include "statemanager/smw/control_file_buffer.h"

#include <ostream>
#include <string>

namespace ximo::ap::statemanager::smw {

/// Writes words into one of the hypervisor's control files.
///
/// The file is opened once and stays open. Each word goes to the driver as one write of exactly its bytes, at the
/// position that the word before it has left, with nothing after it. A word that could not be written is dropped, and
/// the next one is tried as if nothing had happened.
///
/// Only a file that could be opened reports write errors: where opening failed (which is logged once), writing does
/// nothing and succeeds. Not for two threads at once.
class Shared_memory_writer_interface {
 public:
    explicit Shared_memory_writer_interface(std::string path);
    virtual ~Shared_memory_writer_interface() = default;  ///< closes the file; nobody is told when that fails
    Shared_memory_writer_interface(Shared_memory_writer_interface const&) = delete;
    Shared_memory_writer_interface& operator=(Shared_memory_writer_interface const&) = delete;

    /// False, and a warning, when the word did not get through in one piece. An empty word is not written.
    virtual bool write_to_memory(std::string data);

    /// Closes the file unless the last word has failed. Throws `std::ios_base::failure` when closing fails; a second
    /// call fails, too.
    void close_file();

 protected:
    bool has_file() const { return file_.is_open(); }

 private:
    std::string const path_;
    Control_file_buffer file_;
    std::ostream stream_;  ///< its exceptions are on exactly when the file could be opened
};

}  // namespace ximo::ap::statemanager::smw

#endif
