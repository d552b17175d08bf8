#ifndef TOOLS_CHECK_SCENE_H
#define TOOLS_CHECK_SCENE_H

#include "tools/check/peer.h"
#include "tools/check/program.h"
#include "tools/check/verdict.h"

#include <cstdint>
#include <optional>
#include <string>

namespace statectl::check {

struct Limits {
    Milliseconds patience{5000};  ///< for what the program must do
    Milliseconds quiet{500};      ///< in which it must not do something
};

/// One run of the program under check, with a state manager that appears, goes and comes back as told.
///
///     scene.serve();
///     auto peer = scene.introduced();
///     scene.ask(peer, 1, "kPrepSD");
class Scene {
 public:
    Scene(Start start, Limits limits) : start_(std::move(start)), limits_(limits) {}
    ~Scene();
    Scene(Scene const&) = delete;
    Scene& operator=(Scene const&) = delete;

    void serve();
    void start_program();  ///< ends the one that runs
    void stop_serving();

    /// The program's next connection; nothing when none comes within the time.
    std::optional<Peer> next_connection(Milliseconds limit);

    /// A connection that has said hello, whatever it said; with it program and server run. Throws Not_checkable.
    Peer introduced();

    /// The same, and it has answered request 1, to go to "kPrepSD".
    Peer standing_by();

    /// The server vanishes with this connection and comes back; the program too. Its hello is in `hello`.
    Peer returned(Peer&& lost, Type_length_values& hello);

    /// Requests, waits for the answer with this number and returns it. Other messages that come first are passed over.
    /// Throws Broken when it does not come, and Not_checkable when there was never an answer in this run.
    Type_length_values ask(Peer& peer, std::uint32_t number, std::string const& state);

    Type_length_values await_answer(Peer& peer, std::uint32_t number);

    /// The longest time from the last request to the answer that was awaited.
    std::optional<Milliseconds> longest_answer() const { return longest_answer_; }

    Milliseconds patience() const { return limits_.patience; }
    Milliseconds quiet() const { return limits_.quiet; }
    Program& program() { return *program_; }

 private:
    [[noreturn]] void fail_without_answer(Peer const& peer, std::uint32_t number, std::string const& others);

    Start start_;
    Limits limits_;
    std::optional<utilities::Socket> listener_;
    std::optional<Program> program_;
    bool has_answered_{false};
    std::optional<Milliseconds> longest_answer_;
};

/// "within 5 s" and the like.
std::string within(Milliseconds limit);

}  // namespace statectl::check

#endif
