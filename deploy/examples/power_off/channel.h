#ifndef POWER_OFF_CHANNEL_H
#define POWER_OFF_CHANNEL_H

#include <optional>
#include <string>

namespace power_off {

/// The reading end of the command channel: a FIFO into which the state manager writes lines.
class Channel {
 public:
    /// Takes the FIFO that is there, so that a state manager which has it open is heard on, or makes one that belongs
    /// to `writer`, who alone may write. Throws `std::system_error`; `std::runtime_error` when the path is something
    /// else.
    Channel(std::string const& path, std::string const& writer);
    ~Channel();
    Channel(Channel const&) = delete;
    Channel& operator=(Channel const&) = delete;

    /// Waits for the next line; nothing when a signal interrupted the wait.
    std::optional<std::string> read_line();

 private:
    int descriptor_;
    std::string waiting_;
};

}  // namespace power_off

#endif
