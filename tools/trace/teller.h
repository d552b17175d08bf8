#ifndef TOOLS_TRACE_TELLER_H
#define TOOLS_TRACE_TELLER_H

#include "tools/dlt/reader.h"
#include "tools/trace/client_requests.h"
#include "tools/trace/holds.h"
#include "tools/trace/life.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace statectl::trace {

/// A life that is being told, and what is needed only for that.
struct Telling {
    Life life;
    Client_requests requests;
    Holds holds;
    std::deque<std::string> commands;  ///< that wait
    bool is_cause_of_newest{false};    ///< the oldest one caused the newest transition
    bool uses_network{true};
    std::string farewell;  ///< why it ended, as it says itself
    bool said_goodbye{false};
};

/// Makes lives of the messages of one machine, in their order. Texts of messages are the daemon's, which are given.
class Teller {
 public:
    /// A message of the state manager.
    void hear(dlt::Message const& message);

    /// The lives, once the last message was heard.
    std::vector<Life> end();

    /// Until then: those that have ended, and the one that is being told, if there is one.
    std::vector<Life> const& ended() const { return lives_; }
    Life const* current() const { return telling_ ? &telling_->life : nullptr; }

 private:
    bool begins_life(dlt::Message const& message, double time) const;
    void begin_life(dlt::Message const& message);
    void end_life(bool is_last);
    double time_of(dlt::Message const& message);
    void understand(dlt::Message const& message);

    bool tells_states(dlt::Message const& message);
    bool tells_commands(dlt::Message const& message);
    bool tells_end(dlt::Message const& message);

    void change_state(std::string const& from, std::string const& to);
    void consume();

    std::vector<Life> lives_;
    std::optional<Telling> telling_;
    double now_{0};
    std::uint64_t wraps_{0};  ///< how often the sender's clock has begun anew
    std::uint32_t newest_ticks_{0};
};

}  // namespace statectl::trace

#endif
