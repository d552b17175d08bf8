#include "ara/com/dds/threads/lasting_failure.h"

#include "ara/log/logging.h"

#include <utility>

namespace ara::com::dds {

void Lasting_failure::failed(std::exception const& cause) {
    if (failures_++ == 0) {
        ara::log::LogError() << begun_ << cause.what();
    }
}

void Lasting_failure::succeeded() {
    if (auto const failures = std::exchange(failures_, 0); failures != 0) {
        ara::log::LogInfo() << ended_ << failures;
    }
}

}  // namespace ara::com::dds
