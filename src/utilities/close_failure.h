#ifndef UTILITIES_CLOSE_FAILURE_H
#define UTILITIES_CLOSE_FAILURE_H

namespace utilities {

/// Called when a descriptor could not be closed, with its errno. Whoever links the sockets decides what it does: the
/// daemon's library logs it as an error, the applications' library, which has no log, passes over it.
void report_close_failure(int error);

}  // namespace utilities

#endif
