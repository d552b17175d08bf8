#ifndef TOOLS_SIGNALS_H
#define TOOLS_SIGNALS_H

#include "utilities/socket.h"

namespace statectl {

/// The wish of the user to end (base/end_signals.h) as something to poll. The signals stay blocked afterwards.
class End_signals {
 public:
    /// Throws std::system_error.
    End_signals();

    /// Readable once such a signal has come.
    int descriptor() const { return signals_.get_fd(); }

 private:
    utilities::Socket signals_;
};

}  // namespace statectl

#endif
