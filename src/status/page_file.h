#ifndef STATUS_PAGE_FILE_H
#define STATUS_PAGE_FILE_H

#include "status/layout.h"

#include <cstdint>
#include <string>

namespace status {

/// What is known at the start.
struct Facts {
    std::string configuration;  ///< its path
    std::uint64_t period_ms;
    std::uint64_t knockout_cycles;
    bool nm_usage;
};

/// The page's file, made when the object is and written by this process until it goes. Whatever stands in the way (no
/// directory, no rights, no space, another process that writes this page) leaves the process without a page, silently:
/// those who want to read it find out.
///
/// Nothing here waits: not for the lock, and not for a file that is a pipe. The page before stays as `.previous`, also
/// where there is no room for the new one.
class Page_file {
 public:
    Page_file(std::string const& path, Facts const& facts);

    /// No thread writes any more. The file stays.
    ~Page_file();
    Page_file(Page_file const&) = delete;
    Page_file& operator=(Page_file const&) = delete;

    bool is_written() const { return page_ != nullptr; }

 private:
    int lock_;
    Page* page_{nullptr};
};

}  // namespace status

#endif
