#ifndef TOOLS_RECORD_RECORDS_H
#define TOOLS_RECORD_RECORDS_H

#include "tools/page/page_view.h"
#include "tools/record/counts.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace statectl::record {

inline bool is(Number value, status::State state) {
    return value == static_cast<Number>(state);
}

inline double seconds(Number nanoseconds) {
    constexpr double k_second = 1e9;
    return static_cast<double>(nanoseconds) / k_second;
}

// What outlives a reboot: files of JSON lines, each file beginning with the life that it goes on with. The recorder
// appends lines as the status page shows news, and reads what it had written when it starts; `ap_statectl history` and
// its likes read all of it. Times are those of the page: nanoseconds of CLOCK_MONOTONIC, and of CLOCK_REALTIME where
// the name says so.

constexpr char const* k_directory = "/var/lib/ap_statemanager";
constexpr std::size_t k_all_files = 1'000'000;

/// How a power cycle ended. These words are all that there are.
namespace ending {
constexpr char const* running = "running";          ///< it has not
constexpr char const* suspended = "suspended";      ///< and was resumed later
constexpr char const* resumed = "resumed";          ///< from a suspend that was turned back before it was reached
constexpr char const* normal = "normal";            ///< shut down
constexpr char const* fast = "fast";                ///< switched off from a suspend
constexpr char const* signal = "signal";            ///< the daemon was stopped
constexpr char const* watchdog = "watchdog";        ///< its beat had been silent for the watchdog's time
constexpr char const* killed = "killed";            ///< it was gone, and had not been silent for so long
constexpr char const* went_down = "went down";      ///< the machine was, without a farewell
constexpr char const* no_farewell = "no farewell";  ///< nothing more is known
}  // namespace ending

/// The machine state that a normal shutdown asks for, also one from a suspend where nobody could do it fast.
constexpr char const* k_normal_shutdown = "Shutdown";

/// One daemon's life; two are the same if all of this is.
struct Identity {
    std::string boot;
    Number number{0};
    Number pid{0};
    Number started{0};

    bool operator==(Identity const& other) const {
        return std::tie(boot, number, pid, started) == std::tie(other.boot, other.number, other.pid, other.started);
    }
};

struct Recorded_event {
    Number kind{0};  ///< status::Event_kind
    Number at{0};
    Number real{0};    ///< as all below: less what the machine had slept since its boot, where the life says so
    Number asleep{0};  ///< that
    std::array<Number, 3> numbers{};
    std::string text;
};

struct Recorded_count {
    Number at{0};
    Number real{0};
    Counts more{};  ///< than the time before
};

struct Recorded_setting {
    Number at{0};
    std::int64_t by{0};  ///< nanoseconds
};

struct Recorded_hold {
    Number hold{0};
    std::string name;
};

struct Recorded_end {
    std::string how;  ///< one of `ending`
    Number at{0};
    Number silent{0};  ///< from its last sign of life until it was found gone
};

struct Recorded_life {
    Identity identity;
    Number started_real{0};
    std::string program;
    Number from{0};                ///< what was before is not told any more
    Number state{0};               ///< then
    std::optional<Number> asleep;  ///< what the machine had slept since its boot then, where it was recorded
    std::vector<Recorded_hold> held;
    std::vector<Recorded_event> events;  ///< in the order of their times
    std::vector<Recorded_count> counted;
    std::vector<Recorded_setting> settings;  ///< of the clock
    Counts counts{};                         ///< altogether
    std::optional<Recorded_end> end;
    Number last_at{0};  ///< when something was recorded last
    Number last_real{0};
    Number missed{0};     ///< events that were not seen, or had no room
    Number taken{0};      ///< events that happened up to the last line, also those of files that are not kept
    bool is_left{false};  ///< the recorder was stopped while the life went on
};

struct Records {
    std::vector<Recorded_life> lives;  ///< in the order of the files
    std::size_t lines{0};
    std::size_t damaged{0};               ///< lines that are none, as a torn last one; each is left out
    std::vector<std::string> unreadable;  ///< files that could not be opened or read to their end, each with the reason
};

/// Adds what one line of a file tells; lines come as they stand in the files. Whatever they are, they fail nothing.
void add_line(Records& records, std::string const& line);

/// Puts what was told of each life into the order of their times.
void finish(Records& records);

/// The numbers of the files in the directory, the oldest first. Throws std::system_error without a directory that can
/// be read.
std::vector<Number> file_numbers(std::string const& directory);
std::string file_name(std::string const& directory, Number number);

/// What the newest files tell. Throws std::system_error where they can't be read.
Records read_records(std::string const& directory, std::size_t files = k_all_files);

}  // namespace statectl::record

#endif
