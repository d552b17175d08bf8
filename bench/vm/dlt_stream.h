#ifndef BENCH_VM_DLT_STREAM_H
#define BENCH_VM_DLT_STREAM_H

#include "bench/vehicle/timeline.h"
#include "tools/dlt/reader.h"

#include <string_view>

namespace bench::vm {

/// Cuts the bytes of a serial line, on which a log daemon sends with serial headers, into log messages. A message of
/// which a part is missing, because the daemon died while it sent, is left out, and it goes on with the next header.
class Dlt_stream {
 public:
    /// The messages that these bytes complete, with the times of the sender's clock.
    vehicle::Timeline add(std::string_view bytes);

 private:
    dlt::Reader reader_;
};

}  // namespace bench::vm

#endif
