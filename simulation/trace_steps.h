#ifndef SIMULATION_TRACE_STEPS_H
#define SIMULATION_TRACE_STEPS_H

#include "simulation/clients.h"
#include "simulation/time.h"
#include "simulation/timeline.h"
#include "simulation/trace_life.h"
#include "simulation/trace_words.h"

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace simulation {

/// For what another thread has to do when it comes to it: it has come to it within some cycles and a second.
class Patience {
 public:
    void begin_wait(bool is_due, Time now);
    bool is_over() const { return is_over_; }

 private:
    int waits_{0};
    Time since_{0};
    bool is_over_{false};
};

/// The steps that the simulated life has told, and the trace not yet: each thread's in its order. What is returned as
/// text is what the simulated life says where the trace says something else.
class Trace_steps {
 public:
    /// Steps are some lines of the log; the rest of what a life tells is left alone.
    void hear(Entry const& entry);
    void expect(Family family, std::string const& line) { expected_[family].push_back(line); }

    /// Whether this line is the next of its thread.
    bool is_next(dlt::Message const& message);
    /// The trace tells this step. Nothing when it is the next one of its thread.
    std::optional<std::string> take(dlt::Message const& message);
    std::deque<std::string> const& of(Family family) { return expected_[family]; }

    // The real driver begins to wait: what should have been told by now and was not.
    std::optional<std::string> owed_by_driver();
    std::optional<std::string> owed_releases();
    std::optional<std::string> owed_by_server(Clients const& clients, Time now);
    /// The server's time for what clients were asked is over, and it has had its patience.
    bool is_deadline_over() const { return deadline_.is_over(); }

    std::size_t count() const { return count_; }

 private:
    std::map<Family, std::deque<std::string>> expected_;
    std::size_t count_{0};
    std::size_t owed_releases_{0};  ///< of the ECU, since the cycle before
    Patience deadline_;             ///< for the server that stops waiting for answers
    Patience owed_;                 ///< for the server that has something to tell
};

}  // namespace simulation

#endif
