#include "utilities/close_failure.h"

#include "base/system_error.h"
#include "utilities/logger.h"

namespace utilities {

void report_close_failure(int error) {
    get_logger().LogError() << "close(m_socket) failed with error: " << base::system_error_text(error);
}

}  // namespace utilities
