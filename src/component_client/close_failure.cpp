#include "utilities/close_failure.h"

namespace utilities {

// An application has no log of ours, and can do nothing about it.
void report_close_failure(int /*error*/) {}

}  // namespace utilities
