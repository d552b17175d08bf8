#ifndef TOOLS_TRACE_LIFE_H
#define TOOLS_TRACE_LIFE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace statectl::trace {

// What a trace tells of one life of the state manager: from the start of its process to its end. Times are seconds
// since its machine's start; what has no end had none when the life, or the trace, ended.

/// A state that the machine was in.
struct Stay {
    std::string state;
    double begin;
    std::optional<double> end;
    std::string cause;  ///< of entering it
};

/// How a client answered one request, in the log's words: "succeeded", "general error", "invalid", "timed out".
struct Answer {
    std::string client;
    std::string status;
    std::optional<double> seconds{};  ///< after it was asked; a log does not tell
};

/// One group of clients that is asked: "DCM", "applications" or "DEM".
struct Group {
    std::string name;
    double begin;
    std::optional<double> end;
    std::vector<Answer> answers;
};

/// The way of the clients before a suspend, or after it.
struct Sequence {
    bool is_standby;
    double begin;
    std::optional<double> end;  ///< none for one that was turned back
    std::vector<Group> groups;
};

/// What an application holds: "ECU alive", "communication" or "car wake-up".
struct Hold {
    std::string what;
    std::string who;
    std::string bits;  ///< of communication, hexadecimal
    double begin;
    std::optional<double> end;
};

/// Something that has a time and is told in a sentence.
struct Remark {
    double time;
    std::string text;
};

/// How a client fared over the life.
struct Client_account {
    unsigned asked{0};
    unsigned succeeded{0};
    unsigned failed{0};
    unsigned late{0};         ///< timed out
    unsigned out_of_turn{0};  ///< answers that nobody waited for any more
    unsigned dropped{0};      ///< thrown out, or gone while it was asked
    double waited{0};         ///< time of the groups in which it was late, in seconds
};

struct Life {
    std::string ecu;
    std::optional<std::uint32_t> process;
    std::optional<std::int64_t> stored_us;  ///< when its first message was stored
    double begin{0};
    double end{0};
    bool has_start{false};  ///< its first message is that of a start
    std::string ending;     ///< in words: "went down", "no farewell, last seen in Running"
    bool is_orderly{true};
    std::vector<Stay> stays;
    std::vector<Sequence> sequences;
    std::vector<Hold> holds;
    std::vector<Remark> dropped;   ///< commands that no state acted on
    std::vector<Remark> requests;  ///< of a restart
    std::vector<Remark> troubles;  ///< warnings, errors and fatal messages
    std::map<std::string, Client_account> clients;
    std::size_t messages{0};
};

/// A trace as a whole.
struct Story {
    std::vector<Life> lives;
    std::size_t messages{0};  ///< all that were read
    std::size_t skipped_bytes{0};
    bool is_cut{false};
};

}  // namespace statectl::trace

#endif
