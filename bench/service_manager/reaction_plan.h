#ifndef BENCH_SERVICE_MANAGER_REACTION_PLAN_H
#define BENCH_SERVICE_MANAGER_REACTION_PLAN_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

namespace bench::service_manager {

/// How one call of a client goes; a default one goes well.
struct Reaction {
    std::string error;                       ///< D-Bus error name to answer with; empty for none
    bool silent = false;                     ///< never answers
    std::chrono::milliseconds delay{0};      ///< holds the whole call back
    std::chrono::milliseconds job_delay{0};  ///< of a started job: time until it ends
    std::string job_result = "done";         ///< of a started job: "done", "failed", "timeout", "canceled", ...
};

/// The reactions that were told beforehand. Of those that fit a call the oldest is used up.
class Reaction_plan {
 public:
    /// `method` is a D-Bus member such as "StartUnit", `unit` a unit's name; "*" fits any.
    void add(std::string const& method, std::string const& unit, Reaction const& reaction, std::uint64_t count);

    Reaction take(std::string const& method, std::string const& unit);
    void clear() { planned_.clear(); }

 private:
    struct Planned {
        std::string method;
        std::string unit;
        Reaction reaction;
        std::uint64_t left;
    };
    std::deque<Planned> planned_;
};

}  // namespace bench::service_manager

#endif
