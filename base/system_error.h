#ifndef BASE_SYSTEM_ERROR_H
#define BASE_SYSTEM_ERROR_H

#include <string>
#include <system_error>

namespace base {

/// The system's text for an `errno` value, "No such file or directory" for ENOENT; "Success" for 0.
inline std::string system_error_text(int error) {
    return std::generic_category().message(error);
}

}  // namespace base

#endif
