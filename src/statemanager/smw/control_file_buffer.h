#ifndef STATEMANAGER_SMW_CONTROL_FILE_BUFFER_H
#define STATEMANAGER_SMW_CONTROL_FILE_BUFFER_H

#include <streambuf>
#include <string>

namespace ximo::ap::statemanager::smw {

/// Stream buffer on a control file that keeps nothing back: each insertion is one `write` of exactly its bytes.
///
/// The standard file buffer keeps the bytes of a failed write and sends them again in front of the next ones; a
/// hypervisor's driver would take that for a word that nobody has written. Here the bytes of a failed or short write
/// are gone.
class Control_file_buffer final : public std::streambuf {
 public:
    /// Opens like an output stream does: for writing only, created when missing, emptied when not.
    explicit Control_file_buffer(std::string const& path);
    ~Control_file_buffer() override;
    Control_file_buffer(Control_file_buffer const&) = delete;
    Control_file_buffer& operator=(Control_file_buffer const&) = delete;

    bool is_open() const;

    /// False when the file was not open or its last close failed; it is closed in any case.
    bool close();

 protected:
    std::streamsize xsputn(char const* bytes, std::streamsize count) override;
    int_type overflow(int_type byte) override;

 private:
    int descriptor_;
};

}  // namespace ximo::ap::statemanager::smw

#endif
