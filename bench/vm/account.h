#ifndef BENCH_VM_ACCOUNT_H
#define BENCH_VM_ACCOUNT_H

#include "bench/json_lines/line_splitter.h"
#include "bench/vehicle/timeline.h"
#include "bench/vm/dlt_stream.h"
#include "bench/vm/journal.h"
#include "bench/vm/players.h"
#include "bench/vm/word_splitter.h"

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace bench::vm {

/// What a machine tells while it is on: the bytes of its lines become events at the times of this machine's clock.
class Account {
 public:
    vehicle::Timeline hear_state(std::string_view bytes);
    vehicle::Timeline hear_restart(std::string_view bytes);

    /// What the power-off service writes, a line for each command and each thing that it does.
    vehicle::Timeline hear_power_off(std::string_view bytes);

    vehicle::Timeline hear_log(std::string_view bytes);

    /// The players among the machine's units tell theirs by the journal.
    vehicle::Timeline hear_journal(std::string_view bytes, Players& players);

    /// The entries so far, with the machine's own times.
    std::vector<Entry> const& journal() const { return journal_; }

    /// The machine's clock at a time of this machine's, both in nanoseconds.
    std::int64_t machine_time(std::int64_t time) const { return time - clock_offset_; }

 private:
    std::int64_t to_host_time(std::int64_t machine_time);

    Word_splitter state_words_;
    Word_splitter restart_words_;
    Line_splitter power_off_lines_;
    Dlt_stream log_;
    Journal entries_;
    std::vector<Entry> journal_;
    std::int64_t clock_offset_{std::numeric_limits<std::int64_t>::max()};
};

}  // namespace bench::vm

#endif
