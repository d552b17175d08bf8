#ifndef TESTS_SIMULATION_LIVES_HELD_RESTARTS_H
#define TESTS_SIMULATION_LIVES_HELD_RESTARTS_H

#include <deque>
#include <functional>
#include <string>

namespace lives {

/// What the rules say of the words with which diagnostics restarts machines: one that is refused is taken back and said
/// once more, and there is none for any other kind of restart.
class Held_restarts {
 public:
    /// `find` is told what was broken.
    explicit Held_restarts(std::function<void(std::string const&)> find) : find_(std::move(find)) {}

    /// What diagnostics calls: "requests restart 5".
    void take_call(std::string const& what);

    void take_word(std::string const& fate, std::string const& word);

    /// Whatever was owed to a call was written before the next one, and before the driver waits.
    void check();

 private:
    std::function<void(std::string const&)> const find_;
    std::deque<std::string> owed_;
    bool is_first_{false};  ///< word of a call
};

}  // namespace lives

#endif
