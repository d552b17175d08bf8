#ifndef TOOLS_TRACE_FOLLOWER_H
#define TOOLS_TRACE_FOLLOWER_H

#include "tools/trace/teller.h"

#include <cstddef>
#include <map>
#include <string>

namespace statectl::trace {

/// Tells of a trace that goes on each state as it is entered, and each end of a life, a line each. A Narrator tells the
/// whole at the end.
class Follower {
 public:
    /// The lines that there are to tell after this message: none, for most.
    std::string hear(dlt::Message const& message);

 private:
    struct Machine {
        Teller teller;
        std::size_t lives{0};  ///< whose ends have been told
        std::size_t stays{0};  ///< of the life after them
    };

    std::map<std::string, Machine> machines_;  ///< by ECU
};

}  // namespace statectl::trace

#endif
