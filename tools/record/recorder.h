#ifndef TOOLS_RECORD_RECORDER_H
#define TOOLS_RECORD_RECORDER_H

#include "tools/record/record_files.h"
#include "tools/record/records.h"

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>

namespace statectl::record {

/// When a look is taken: the same moment by both clocks, how many events the page counted just before, and how long the
/// machine has slept since its boot.
struct Look {
    Number at;
    Number real;
    Number events;
    std::optional<Number> asleep{};  ///< nothing where nobody knows
};

/// Follows the status page of one life after the other, on one thread, and hands what is new to the files.
///
///     Recorder recorder(files, read_records(directory, 2), watchdog);
///     recorder.look(page, {at, real, events});      // again and again
///     recorder.leave({at, real, events});           // when it is stopped itself
class Recorder {
 public:
    /// `before` is what stands in the files; `watchdog` nanoseconds without a beat are the end of a daemon.
    Recorder(Record_files& files, Records before, Number watchdog);

    void look(Snapshot const& page, Look const& now);
    void leave(Look const& now);

 private:
    using Key = std::tuple<Number, Number, std::array<Number, 3>, std::string>;

    void begin_life(Snapshot const& page, Identity const& identity, Look const& now);
    void take_up(Recorded_life const& life);
    bool is_begun(Snapshot const& page, Look const& now);
    Identity last_life() const;
    void write_new_events(Snapshot const& page, Look const& now);
    bool has_allowance(Number kind);
    void write_new_counts(Snapshot const& page, Look const& now);
    void tell_missed(Look const& now);
    void tell_alive(Look const& now);
    void tell_end(Snapshot const& page, Look const& now);
    char const* end_of(Snapshot const& page, bool is_watched) const;
    bool add(char const* line, std::string const& members, Look const& now);

    Record_files& files_;
    Records const before_;
    Number const watchdog_;
    Identity identity_;
    std::string first_line_;  // of the next file
    std::set<Key> seen_;      // events that stand on the page and were taken
    Number taken_until_{0};   // those before were taken, or told as missed, before this recorder was started
    Number taken_{0};         // events of this life, with those that were told as missed
    Number untold_{0};        // of lives before, for which there was no room
    Number happened_{0};      // events of this life, at the last look
    Counts counts_{};         // of it, as they were told
    Number told_counts_{0};   // when; 0: not yet
    bool is_begun_{false};    // the life's line was taken
    bool is_over_{false};     // its end was told
    bool was_alive_{false};   // at the last look
    bool is_urgent_{false};
    Number looked_{0};
    std::optional<Number> told_alive_;         // when, of this life
    std::optional<std::int64_t> clock_begin_;  // what the clock said at the boot, as it was set at the last look
    double allowance_;
};

}  // namespace statectl::record

#endif
