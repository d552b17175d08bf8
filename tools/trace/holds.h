#ifndef TOOLS_TRACE_HOLDS_H
#define TOOLS_TRACE_HOLDS_H

#include "tools/dlt/reader.h"
#include "tools/trace/life.h"

#include <string>
#include <vector>

namespace statectl::trace {

/// What applications hold during one life, as its messages tell.
class Holds {
 public:
    /// Whether the message was about that.
    bool hear(dlt::Message const& message, double now);

    /// Who holds something of one of these kinds now, each once.
    std::vector<std::string> holders(std::vector<std::string> const& kinds) const;

    std::vector<Hold> const& all() const { return holds_; }

 private:
    void hold(std::string const& what, std::string const& who, std::string const& bits, double now);
    void release(std::string const& what, std::string const& who, std::string const& bits, double now);
    void release_all(std::string const& what, double now);

    std::vector<Hold> holds_;
};

}  // namespace statectl::trace

#endif
