#include "utilities/logger.h"

#include "ara/log/logging.h"

namespace utilities {

ara::log::Logger& get_logger() {
    static ara::log::Logger& logger = ara::log::CreateLogger("SNCC", "state notification lib and client states logger");
    return logger;
}

}  // namespace utilities
