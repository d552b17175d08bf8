#ifndef BENCH_VEHICLE_POWER_OFF_SERVICE_H
#define BENCH_VEHICLE_POWER_OFF_SERVICE_H

#include <string>
#include <vector>

namespace bench::vehicle {

/// The reading end of the power-off channel, /run/adaptive/poweroff: a FIFO that takes commands and only shows them.
class Power_off_service {
 public:
    Power_off_service();
    ~Power_off_service();
    Power_off_service(Power_off_service const&) = delete;
    Power_off_service& operator=(Power_off_service const&) = delete;

    /// The commands since the last call, without their line feeds.
    std::vector<std::string> take();

 private:
    int descriptor_;
    std::string unfinished_;
};

}  // namespace bench::vehicle

#endif
