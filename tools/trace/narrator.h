#ifndef TOOLS_TRACE_NARRATOR_H
#define TOOLS_TRACE_NARRATOR_H

#include "tools/dlt/reader.h"
#include "tools/trace/life.h"

#include <cstddef>
#include <vector>

namespace statectl::trace {

/// Reads a whole trace: the messages of the state manager among those of others, of each machine (ECU) its lives, in
/// the order of their beginnings. A file whose end was written before its beginning, as a ring is, is put into order.
class Narrator {
 public:
    void hear(dlt::Message message);
    Story end(dlt::Reader const& reader);

 private:
    std::vector<dlt::Message> messages_;  ///< of the state manager
    std::size_t count_{0};
};

}  // namespace statectl::trace

#endif
