#ifndef CLIENT_STATE_NOTIFIER_INBOX_H
#define CLIENT_STATE_NOTIFIER_INBOX_H

#include "utilities/frame_assembler.h"
#include "utilities/socket.h"

#include <chrono>
#include <optional>

namespace client_state_notifier {

/// What one connection has sent, as messages. Reads what is there and never waits for the rest.
class Inbox {
 public:
    using Clock = std::chrono::steady_clock;

    /// More messages than this within one second are a flood, those aside for which the client was asked.
    static constexpr unsigned k_most_unasked_a_second = 256;

    /// One receive of at most 4 KiB, so that no connection holds up another. Throws ExceptionSocketClosed when the peer
    /// has closed its end and everything before that was received, std::system_error when the connection is broken.
    void receive(utilities::Socket const& socket);

    /// One message more may come: the client was asked for it.
    void expect_one() { ++expected_; }

    /// The next whole message, if there is one, as of now. Throws what Frame_assembler::take does, and
    /// std::runtime_error in a flood; after that the connection is of no use.
    std::optional<utilities::Type_length_values> take(Clock::time_point now);

    /// The same into a message that is there, see Frame_assembler.
    bool take(utilities::Type_length_values& message, Clock::time_point now);

 private:
    void count_message(Clock::time_point now);

    utilities::Frame_assembler frames_;
    Clock::time_point second_started_;
    unsigned expected_{0};  ///< asked for and not received
    unsigned unasked_{0};   ///< received in this second
};

}  // namespace client_state_notifier

#endif
