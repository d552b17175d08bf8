#ifndef ARA_LOG_TOLD_LEVELS_H
#define ARA_LOG_TOLD_LEVELS_H

#include "base/mutex.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace ara::log {

/// Tells one log daemon from the next: each makes its pipe anew when it starts. All zero when there is no pipe.
using Pipe_identity = std::array<std::uint64_t, 5>;

/// A level that a log daemon has told for a context.
struct Told_level {
    std::string context;
    std::int8_t level;
    Pipe_identity pipe;  ///< of the daemon that told it
};

/// What log daemons have told, on its way from libdlt's thread to the consumer of the queue. Never destroyed, since
/// libdlt may still call when the process ends.
class Told_levels {
 public:
    static Told_levels& instance();

    /// Any thread.
    void add(std::string context, std::uint8_t level);

    /// What was told since the last call, in its order. Costs next to nothing when that is nothing.
    std::vector<Told_level> take();

    /// The directory in which libdlt looks for the daemon's pipe.
    std::string const& directory() const { return directory_; }

    /// The pipe that is there now.
    Pipe_identity pipe() const;

 private:
    Told_levels();

    std::string const directory_;
    std::atomic<bool> has_some_{false};
    base::Mutex mutex_;
    std::vector<Told_level> told_ GUARDED_BY(mutex_);
};

}  // namespace ara::log

#endif
