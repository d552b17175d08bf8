#ifndef TESTS_FAULTS_ONE_LIFE_H
#define TESTS_FAULTS_ONE_LIFE_H

#include "bench/vehicle/vehicle.h"
#include "lives.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace faults {

/// How a life with a fault ended. What comes before `wrong` is as docs/errors.md and docs/reliability.md say.
enum class Outcome {
    unreached,        ///< the call was not made
    as_ever,          ///< nothing was to be seen of the fault
    told,             ///< a warning or an error says what was not done; everything else was
    refused,          ///< the start ended with status 255 and a fatal message, or 0 and "Failed to initialize"
    stopped,          ///< by the signal that was the fault
    ended_by_engine,  ///< before the first word, by a signal and out of the engine's own code
    wrong,
};
constexpr std::size_t k_outcomes = 7;
char const* name_of(Outcome outcome);

struct Verdict {
    Outcome outcome{Outcome::as_ever};
    std::string reason;               ///< of what is wrong
    std::vector<std::string> told{};  ///< messages that a life without a fault does not have
};

/// Leads one daemon through a life and judges what it shows. Nothing is judged by how long it took, but by whether it
/// came at all.
class One_life {
 public:
    /// `usual` are the warnings and errors of lives without a fault.
    One_life(bench::vehicle::Vehicle& machine, Life const& life, std::set<std::string> const& usual);

    /// `may_be_stopped`: the fault is a signal that ends the daemon orderly; `is_of_engine`: the failing call is the
    /// communication engine's own.
    Verdict lead(bool may_be_stopped, bool is_of_engine);

    /// Warnings and errors that were logged.
    std::set<std::string> complaints() const;

 private:
    void go(Step const& step);
    void act(Step const& step);
    void await(Step const& step, Expected const& expected);
    bool is_seen(Expected const& expected) const;
    bool is_logged(std::string const& text) const;
    bool has_complained() const;
    bool has_last_line() const;
    bool has_died() const;  ///< and said why
    std::optional<int> end() const;
    void check_health();
    bool everybody_is_connected();
    void await_end();
    void judge_words();
    bool is_part_of_a_word(std::string const& text) const;
    void judge_end(bool may_be_stopped, bool is_of_engine);
    void wrong(std::string const& reason);

    bench::vehicle::Vehicle& machine_;
    Life const& life_;
    std::set<std::string> const& usual_;
    std::size_t from_{0};                          ///< first event of the step
    std::chrono::steady_clock::time_point begin_;  ///< of the step
    bool is_over_{false};                          ///< nothing more is to be awaited
    Verdict verdict_;
};

}  // namespace faults

#endif
