#ifndef BENCH_NETWORK_CALL_PLAN_H
#define BENCH_NETWORK_CALL_PLAN_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

namespace bench::network {

/// How one call of a service goes; a default one goes well.
struct Call_reaction {
    bool refuse = false;                 ///< the caller gets an exception, and nothing else happens
    bool silent = false;                 ///< the caller gets no answer; what was asked for happens
    std::chrono::milliseconds delay{0};  ///< until the answer
};

/// The reactions that were told beforehand. Of those that fit a call the oldest is used up.
class Call_plan {
 public:
    /// `method` such as "RequestNetwork"; "*" fits any.
    void add(std::string const& method, Call_reaction const& reaction, std::uint64_t count);
    Call_reaction take(std::string const& method);
    void clear() { planned_.clear(); }

 private:
    struct Planned {
        std::string method;
        Call_reaction reaction;
        std::uint64_t left;
    };
    std::deque<Planned> planned_;
};

}  // namespace bench::network

#endif
