#ifndef UTILITIES_LOGGER_H
#define UTILITIES_LOGGER_H

#include "ara/log/logger.h"

namespace utilities {

/// The logger of the whole notification library, context "SNCC". It lives until the process ends.
ara::log::Logger& get_logger();

}  // namespace utilities

#endif
