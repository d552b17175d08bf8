#ifndef BENCH_VEHICLE_CLIENT_STATUS_H
#define BENCH_VEHICLE_CLIENT_STATUS_H

#include <cstdint>
#include <string>

namespace bench::vehicle {

/// What is known of one client of the state manager.
struct Client_status {
    std::string name;
    std::string manner{"well"};  ///< how it was told to behave
    bool is_running{true};
    bool is_connected{false};
    std::string state{};       ///< announced or answered last; empty before
    std::string owed{};        ///< state that it is asked for and has not answered; empty for none
    std::int64_t deadline{0};  ///< until which the answer is waited for, nanoseconds of CLOCK_MONOTONIC; 0 for none
};

}  // namespace bench::vehicle

#endif
