#ifndef TOLD_TOLD_H
#define TOLD_TOLD_H

#include <string_view>

/// What the daemon tells its platform, for those who look on.
namespace told {

/// One thing that was told; the texts are valid during the call only.
struct Line {
    std::string_view whom;  ///< "log", "exec", "phm" or "com"
    std::string_view what;  ///< of a log message: its level, its context, and its pieces with a blank between them
};

/// Is called with each line, on the thread or in the signal handler that tells it.
using Listener = void (*)(Line const& line);

/// Gives all lines to `listener` from now on; null gives them to standard error again, "WHOM WHAT" each.
void listen(Listener listener);

/// Tells a line. Neither locks nor allocates, and keeps errno, as long as the listener does so.
void tell(Line const& line);

}  // namespace told

#endif
