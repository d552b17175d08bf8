#ifndef TESTS_UNIT_FAST_SHUTDOWN_POWER_OFF_CHANNEL_H
#define TESTS_UNIT_FAST_SHUTDOWN_POWER_OFF_CHANNEL_H

#include "support/temporary_directory.h"

#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace test_support {

/// A FIFO on which a power-off service listens, or not.
class Power_off_channel {
 public:
    Power_off_channel() { ::mkfifo(path().c_str(), 0600); }
    ~Power_off_channel() { stop_listening(); }
    Power_off_channel(Power_off_channel const&) = delete;
    Power_off_channel& operator=(Power_off_channel const&) = delete;

    std::string path() const { return directory_.file("poweroff"); }

    void listen() { reader_ = ::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }
    void stop_listening() {
        if (reader_ >= 0) {
            ::close(reader_);
        }
        reader_ = -1;
    }

    /// Everything that has been written so far and not been taken.
    std::string take() const {
        std::string taken(65536, '\0');
        ssize_t const count = ::read(reader_, taken.data(), taken.size());
        taken.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return taken;
    }

 private:
    Temporary_directory directory_;
    int reader_{-1};
};

}  // namespace test_support

#endif
