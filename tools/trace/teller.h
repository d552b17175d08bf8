#ifndef TOOLS_TRACE_TELLER_H
#define TOOLS_TRACE_TELLER_H

#include "tools/dlt/reader.h"
#include "tools/trace/life.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace statectl::trace {

/// A life that is being told, and what is needed only for that.
struct Telling {
    Life life;
    std::deque<std::string> commands;  ///< that wait
    bool is_cause_of_newest = false;   ///< the oldest one caused the newest transition
    bool uses_network = true;
    std::string farewell;  ///< why it ended, as it says itself
    bool said_goodbye = false;
};

/// Makes lives of the messages of one machine, in their order. Texts of messages are the daemon's, which are given.
class Teller {
 public:
    /// A message of the state manager.
    void take(dlt::Message const& message);

    /// The lives, once the last message was taken.
    std::vector<Life> end();

 private:
    bool begins_life(dlt::Message const& message, double time) const;
    void begin_life(dlt::Message const& message);
    void end_life(bool is_last);
    double time_of(dlt::Message const& message);
    void understand(dlt::Message const& message);

    bool tells_states(dlt::Message const& message);
    bool tells_commands(dlt::Message const& message);
    bool tells_sequences(dlt::Message const& message);
    bool tells_clients(dlt::Message const& message);
    bool tells_holds(dlt::Message const& message);
    bool tells_end(dlt::Message const& message);

    void change_state(std::string const& from, std::string const& to);
    void consume();
    void leave_sequence();
    void begin_sequence(bool is_standby);
    void complete_group();
    void answer(std::string const& client, std::string const& status);
    void hold(std::string const& what, std::string const& who, std::string const& bits);
    void release(std::string const& what, std::string const& who, std::string const& bits);
    void release_all(std::string const& what);
    std::vector<std::string> holders(std::vector<std::string> const& kinds) const;
    std::vector<std::string> late_clients() const;

    std::vector<Life> lives_;
    std::optional<Telling> telling_;
    double now_ = 0;
    std::uint64_t wraps_ = 0;  ///< how often the sender's clock has begun anew
    std::uint32_t newest_ticks_ = 0;
};

/// Reads a whole trace: the messages of the state manager among those of others, of each machine (ECU) its lives, in
/// the order of their beginnings. A file whose end was written before its beginning, as a ring is, is put into order.
class Narrator {
 public:
    void take(dlt::Message message);
    Story end(dlt::Reader const& reader);

 private:
    std::vector<dlt::Message> messages_;  ///< of the state manager
    std::size_t count_ = 0;
};

}  // namespace statectl::trace

#endif
