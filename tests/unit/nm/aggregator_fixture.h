#ifndef TESTS_UNIT_NM_AGGREGATOR_FIXTURE_H
#define TESTS_UNIT_NM_AGGREGATOR_FIXTURE_H

#include "statemanager/nm/nm_data_aggregator.h"
#include "support/log_capture.h"

#include <gmock/gmock.h>

namespace ximo::ap::statemanager::nm {

using ara::log::LogLevel;
using config::Nm_user_data_config;
using test_support::Log_capture;
using test_support::logged;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The default layout with room for four bytes of CAB bits, as the service handler sets it up, unless a test says else.
class Aggregator : public testing::Test {
 protected:
    explicit Aggregator(Nm_user_data_config const& layout = {}) : sut(layout) {
        sut.init(4);
        log.clear();
    }

    Log_capture log;
    Nm_data_aggregator sut;
};

inline auto applying(std::size_t size, unsigned offset) {
    return logged(LogLevel::kInfo, "Applying user data bits size: ", size, " at offset ", offset);
}

inline auto releasing_ac_bit(char const* key) {
    return logged(LogLevel::kInfo, "Releasing AC bit for application ", key);
}

}  // namespace ximo::ap::statemanager::nm

#endif
