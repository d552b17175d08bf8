#ifndef STATUS_LAYOUT_H
#define STATUS_LAYOUT_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

/// The status page: what the daemon lets others see of itself. This header is all that those who read it share with
/// those who write it.
///
/// A file of fixed size that the daemon maps and writes, and others map and read; it says what it says also when the
/// daemon has ended, however that came. Its path is `k_page_path`, that of the life before with `k_previous` behind it,
/// and who holds the lock (fcntl, open file description) of the file with `k_lock` behind it writes it.
///
/// All of it are words of 64 bits in the machine's byte order, on a machine where they are written at once. Times are
/// nanoseconds of CLOCK_MONOTONIC, which stands still while the machine does; 0 is "never". A text is bytes in words,
/// lowest first, filled up with zeros; one that is too long ends in "...". Numbers of states, commands and rows are
/// those of the documentation.
///
/// A section or record begins with its sequence: odd while its one writer is inside, and another one after each change.
/// Who reads takes the sequence, the words and the sequence again, and begins anew when these differ or are odd. A
/// sequence that stays odd is the trace of a writer that was ended half-way. Words are stored with release and loaded
/// with acquire, so that whoever sees a word of a change sees at least the odd sequence before it.
namespace status {

constexpr char const* k_page_path = "/run/adaptive/status/ap_statemanager";
constexpr char const* k_previous = ".previous";
constexpr char const* k_lock = ".lock";

constexpr std::uint64_t k_magic = 0x45474150'4d534d41U;  ///< the bytes "AMSMPAGE"
constexpr std::uint64_t k_version = 4;                   ///< of this layout; another one is another layout

using Shared_word = std::atomic<std::uint64_t>;
static_assert(Shared_word::is_always_lock_free && sizeof(Shared_word) == sizeof(std::uint64_t));

// Each structure is made of words alone, and exists twice: as it is shared, and as a copy (Word = std::uint64_t).

template <class Word, std::size_t bytes>
struct Text {
    static_assert(bytes % sizeof(std::uint64_t) == 0);
    std::array<Word, bytes / sizeof(std::uint64_t)> words;
};

constexpr std::size_t k_longest_name = 64;

/// The process. Written before the page can be seen, and constant.
template <class Word>
struct Life {
    Word magic;
    Word version;
    Word bytes;         ///< of the whole page
    Word number;        ///< counts the lives since the boot from 1
    Word pid;           ///< as the daemon's own name space has it
    Word started;       ///< time
    Word started_real;  ///< the same moment, nanoseconds of CLOCK_REALTIME
    Word period_ms;     ///< of the main function
    Word nm_usage;      ///< 1: network management is used
    Word knockout;      ///< cycles that Post Run stays at most
    Word digest;        ///< FNV-1a, 64 bits, of the configuration file; 0 when it can't be read (again)
    Text<Word, 40> boot;
    Text<Word, 32> program;  ///< its version
    Text<Word, 256> configuration;
};

/// How the daemon came to where it is.
enum class State : std::uint64_t {
    starting_up = 0,
    running = 1,
    nm_controlled = 2,
    post_run = 3,
    shutting_down = 4,
    preparing = 5,
    prepared_sd = 6,
    resuming = 7,
};

/// What a state waits for.
enum class Condition : std::uint64_t {
    nothing = 0,
    network_manager = 1,  ///< to be found
    command = 2,          ///< of the hypervisor
    network = 3,          ///< to go to sleep
    ecu_alive = 4,        ///< to be given up by all, or the knock-out timer
    clients = 5,          ///< to answer
    power_off = 6,
};

/// What keeps the oldest command waiting.
enum class Blocked : std::uint64_t {
    not_at_all = 0,  ///< none waits, or the state takes it
    by_state = 1,    ///< this state never takes it
    by_setting = 2,  ///< nor would it, but for the setting StateManagerNMUsage
};

/// What became of a state word.
enum class Word_fate : std::uint64_t {
    written = 0,
    refused = 1,  ///< by the control file
    no_file = 2,  ///< the control file could not be opened at the start
};

enum class Group : std::uint64_t { none = 0, dcm = 1, applications = 2, dem = 3 };

constexpr std::size_t k_queue = 16;

/// Written by the driver's thread.
template <class Word>
struct Driver {
    Word sequence;
    // The cycle
    Word beat;  ///< when the last one began
    Word cycles;
    Word longest;     ///< nanoseconds from one beat to the next
    Word longest_at;  ///< when the longest one ended
    Word ended;       ///< when the loop was left; 0 before, and for ever when the process was ended
    Word told;        ///< of `Page::events`: for these, readers were woken
    // The state
    Word state;
    Word since;
    Word previous;  ///< the state before; `State` number
    Word row;       ///< of the previous state's table, by which it was left; 0 at the start
    Word command;   ///< that did it; 0 when a condition did
    Word transitions;
    Word condition;     ///< `Condition`: what the state waits for
    Word blocked;       ///< `Blocked`: the oldest command
    Word prepare_sd;    ///< 1: the network phase ends in a suspend
    Word forced;        ///< 1: power-off was requested while suspended
    Word knockout;      ///< cycles left in Post Run
    Word default_held;  ///< time since when the states hold the network by the default pattern; 0: they don't
    // The commands
    Word waiting;                        ///< how many
    std::array<Word, k_queue> queue;     ///< the oldest of them, oldest first
    std::array<Word, k_queue> taken_at;  ///< when each came
    Word keys_taken;
    Word keys_dropped;    ///< equal to the one taken last
    Word keys_cleared;    ///< taken, and thrown away for a power key
    Word keys_swallowed;  ///< taken, and done with by a transition that something else has caused
    Word last_key;
    Word last_key_at;
    Word last_dropped;
    Word last_dropped_at;
    Word last_cleared;  ///< the oldest of those that the last power key threw away
    Word last_cleared_at;
    Word last_swallowed;
    Word last_swallowed_at;
    Word swallowed_from;  ///< `State` that was left then
    Word swallowed_row;
    Word devices_found;  ///< at the start
    Word devices;        ///< that are listened to
    Word devices_lost;
    Word device_lost_at;
    // The log
    Word log_lost;  ///< messages that were lost since the queue was full
    Word log_lost_at;
    // The control file
    Text<Word, 24> word;
    Word word_at;
    Word word_failed;   ///< `Word_fate` of the last one
    Word words_failed;  ///< how many were not written
    // Execution management
    Text<Word, 24> machine_state;  ///< asked for last
    Word machine_state_at;
    Word machine_state_failed;
    // Health management
    Word supervision_stopped;  ///< when a report of being alive failed, after which there are none; 0: there are
    // The clients of a suspend, as the driver has them asked
    Word group;  ///< `Group`: asked last
    Word group_at;
    Text<Word, 16> mode;  ///< kPrepSD, kOn
};

constexpr std::size_t k_clients = 1'000;
constexpr std::size_t k_names = 1'000;

/// How the last request to a client stands.
enum class Answer : std::uint64_t {
    not_asked = 0,
    open = 1,
    in_time = 2,
    failed = 3,     ///< in time, and a failure
    timed_out = 4,  ///< and nothing heard since
    late = 5,       ///< after its time
    replaced = 6,   ///< a newer request came first
};

/// Written by the notification server's thread.
template <class Word>
struct Server {
    Word sequence;
    Word clients;         ///< connected
    Word clients_untold;  ///< connected once, and there was no record for them
    Word names;           ///< records of names in use
    Word names_untold;
    Word failures;  ///< of the server itself
    Word requests;
    Word in_progress;  ///< 1: a request is
    Word asked_at;
    Word deadline;
    Word asked;       ///< clients
    Word unanswered;  ///< of them
    Word ended_at;
    Word ended_how;  ///< `Answer`: in_time, failed, timed_out, replaced
    Text<Word, 16> mode;
};

/// One connection.
template <class Word>
struct Client {
    Word sequence;
    Word since;       ///< 0: the record is free
    Word connection;  ///< the daemon's descriptor
    Word pid;         ///< as the daemon's name space has it; 0: unknown
    Word uid;
    Word name_record;  ///< number of the record of its name; k_names: none
    Word name_digest;  ///< of the whole name, which tells names apart that are cut alike
    Word answer;       ///< `Answer`
    Word status;       ///< that it answered with
    Word asked_at;
    Word answered_at;
    Text<Word, 16> state;  ///< that it reported last
    Text<Word, k_longest_name> name;
};

/// All connections of one name, over the daemon's life.
template <class Word>
struct Name {
    Word sequence;
    Word used;         ///< 1: the record is one
    Word connections;  ///< now
    Word asked;
    Word in_time;
    Word failed;
    Word late;
    Word timed_out;  ///< those that were late afterwards are counted here, too
    Word vanished;   ///< gone before an answer
    Word longest;    ///< nanoseconds; also of those that were late
    Word total;      ///< of in_time and failed
    Word digest;     ///< FNV-1a, 64 bits, of the whole name
    Text<Word, k_longest_name> name;
};

constexpr std::size_t k_instances = 256;
constexpr std::size_t k_bits = 32;  ///< bytes of a bit vector that are told

template <class Word>
struct Bits {
    Word length;  ///< bytes that there are
    Text<Word, k_bits> bytes;
};

/// Written under the lock of the applications' requests.
template <class Word>
struct Services {
    Word sequence;
    Word manager_found;  ///< when; 0: not yet
    Word sending;        ///< 1: network management is told; 0: a suspend
    Word instances;      ///< records in use
    Word instances_untold;
    Bits<Word> cab_pattern;  ///< requested of the manager for applications
    Bits<Word> user_data;
};

enum class Hold : std::uint64_t { ecu_alive = 0, com_alive = 1, car_wake_up = 2 };

/// One application instance.
template <class Word>
struct Instance {
    Word sequence;
    std::array<Word, 3> provided;  ///< by `Hold`: 1, it has the service
    std::array<Word, 3> since;     ///< by `Hold`: since when it is held, 0 while it is not
    std::array<Word, 3> requests;  ///< by `Hold`: how often it asked
    std::array<Word, 3> releases;
    Word cab;  ///< the CAB bits that it holds, byte k in bits 8k to 8k + 7
    Word ac;   ///< AC number that it gave last
    Text<Word, k_longest_name> name;
};

/// Written by the thread on which the network's reports arrive, one after the other.
template <class Word>
struct Network {
    Word sequence;
    Word ecu_state;  ///< 0 active, 1 ready sleep, 2 sleep mode
    Word ecu_since;
    Word reports;
    Word reported_at;
    Bits<Word> state;  ///< a bit for each that needs the network
};

/// What network management is called for.
enum class Network_call : std::uint64_t { request_network = 0, release_network = 1, set_user_data = 2 };
constexpr std::size_t k_network_calls = 3;

constexpr std::size_t k_restart_types = 6;

/// Counted by any thread: each word is true by itself, and no sequence holds them together.
template <class Word>
struct Counters {
    std::array<Word, k_network_calls> failed_calls;  ///< by `Network_call`
    Word call_failed_at;
    std::array<Word, k_restart_types> restarts;  ///< that diagnostics asked for, by type; 0: one that is unknown
    Word restart_at;
    Word restart_type;     ///< of the last one
    Word restarts_failed;  ///< whose word could not be written
};

enum class Event_kind : std::uint64_t {
    none = 0,
    transition = 1,        ///< numbers: from, to, row
    key_taken = 2,         ///< command
    key_dropped = 3,       ///< command
    word = 4,              ///< `Word_fate`; text
    machine_state = 5,     ///< 1 failed; text
    group_asked = 6,       ///< group; text: mode
    request_ended = 7,     ///< `Answer`
    client_connected = 8,  ///< text: name, also below; third number of each: the digest of all of it
    client_left = 9,
    client_answered = 10,  ///< status, nanoseconds
    client_late = 11,      ///< status, nanoseconds
    client_timed_out = 12,
    client_vanished = 13,
    client_out_of_turn = 14,
    held = 15,      ///< `Hold`, 1: asked for nothing, and holds nothing, 1 + number of its record; text: instance
    released = 16,  ///< `Hold`, 1: not all of it, and still holds it, 1 + number of its record; text: instance
    manager_found = 17,
    network_state = 18,  ///< ecu state, first eight bytes
    device_lost = 19,
    ended = 20,          ///< the loop was left
    key_swallowed = 21,  ///< command, state that was left, row
    keys_cleared = 22,   ///< the oldest command, how many
    supervision_stopped = 23,
};

template <class Word>
struct Event {
    Word at;
    Word kind;
    std::array<Word, 3> numbers;
    Text<Word, 24> text;
};

constexpr std::size_t k_events = 1'024;

/// A writing thread's newest events: that with number n stands in place n modulo k_events. While number `count` is
/// written, its place still counts as that of number `count` - k_events: who reads takes the count before and after,
/// and leaves out what may have been overwritten.
template <class Word>
struct Ring {
    Word count;
    std::array<Event<Word>, k_events> events;
};

/// The page.
struct Page {
    Life<Shared_word> life;
    Shared_word events;  ///< counts all events; its lower half is what readers may wait at (futex)
    Counters<Shared_word> counters;
    Driver<Shared_word> driver;
    Server<Shared_word> server;
    std::array<Client<Shared_word>, k_clients> clients;
    std::array<Name<Shared_word>, k_names> names;
    Services<Shared_word> services;
    std::array<Instance<Shared_word>, k_instances> instances;
    Network<Shared_word> network;
    Ring<Shared_word> driver_ring;
    Ring<Shared_word> server_ring;
    Ring<Shared_word> services_ring;
    Ring<Shared_word> network_ring;
};
static_assert(sizeof(Event<Shared_word>) == 64);

}  // namespace status

#endif
