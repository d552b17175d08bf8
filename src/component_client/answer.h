#ifndef COMPONENT_CLIENT_ANSWER_H
#define COMPONENT_CLIENT_ANSWER_H

#include <cstdint>
#include <memory>
#include <string>

namespace component_client {

/// What has become of a request, as the state manager takes it. Every status but `succeeded` counts as a failure; the
/// machine goes on to its next state all the same.
enum class Status : std::uint8_t {
    succeeded = 0,
    general_error = 1,
    invalid = 2,  ///< the client does not know the state
    timed_out = 3,
};

class Answer_receiver;

/// The one answer to one request. Keep it, move it, use it from any thread and at any later time, also when its client
/// has gone.
///
/// An answer that is dropped unanswered says `general_error` in the client's current state: a forgotten path, or an
/// exception, shows at once and holds up nobody. Who does not want to answer at all calls `withhold`.
class Answer {
 public:
    /// Made by the client, one for each request.
    Answer(std::weak_ptr<Answer_receiver> receiver, std::uint64_t request, std::uint32_t number, std::string state);
    ~Answer();
    Answer(Answer&&) noexcept = default;
    Answer& operator=(Answer&& other) noexcept;
    Answer(Answer const&) = delete;
    Answer& operator=(Answer const&) = delete;

    /// Answers with the state reached: the requested one for `succeeded`, otherwise the one that the client is in
    /// already. True when the answer is on its way. False when nobody waits for it any more: it was given or withheld
    /// before, a newer request has come, the connection is lost, or the client has ended. It does not wait.
    bool send(Status status);

    /// The same, naming the state reached.
    bool send(Status status, std::string const& reached);

    /// Never answers; the state manager waits until its time is over.
    void withhold() { receiver_.reset(); }

    std::string const& state() const { return state_; }  ///< the state requested
    std::uint32_t number() const { return number_; }     ///< of the request on its connection

 private:
    bool deliver(Status status, std::string const* reached);

    std::weak_ptr<Answer_receiver> receiver_;  ///< empty once the answer is given
    std::uint64_t request_;
    std::uint32_t number_;
    std::string state_;
};

}  // namespace component_client

#endif
