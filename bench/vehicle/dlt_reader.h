#ifndef BENCH_VEHICLE_DLT_READER_H
#define BENCH_VEHICLE_DLT_READER_H

#include "bench/process/child_process.h"
#include "bench/vehicle/timeline.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace bench::vehicle {

/// A DLT daemon of our own and a client that reads from it, as a log viewer does. The daemon listens on the loopback;
/// its pipe lies where programs look for it, in /tmp.
class Dlt_reader {
 public:
    /// Returns once programs can log and the client is connected. A context whose program names no level gets the
    /// daemon's own, `default_level` (DLT's is 4). Each message is also written into `trace` if there is one, as a log
    /// viewer stores it. Throws `std::runtime_error`.
    explicit Dlt_reader(int default_level = 6, std::ostream* trace = nullptr);
    ~Dlt_reader();
    Dlt_reader(Dlt_reader const&) = delete;
    Dlt_reader& operator=(Dlt_reader const&) = delete;

    /// The messages of all programs since the last call, with the times of the log calls.
    Timeline take();

    /// What the daemon has told about the programs so far, its control messages as they are: the ids and descriptions
    /// of applications and contexts stand in them as text.
    std::string announcements();

    /// Has a program's context log up to a level from now on, 1 fatal to 6 verbose, as soon as the program has heard of
    /// it. False when the daemon could not be told.
    bool set_level(std::string const& application, std::string const& context, std::uint8_t level);

    Child_process& daemon() { return *daemon_; }

 private:
    class Client;
    std::unique_ptr<Child_process> daemon_;
    std::unique_ptr<Client> client_;
};

}  // namespace bench::vehicle

#endif
