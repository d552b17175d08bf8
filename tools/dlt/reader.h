#ifndef TOOLS_DLT_READER_H
#define TOOLS_DLT_READER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dlt {

/// One log message of a trace.
struct Message {
    std::optional<std::int64_t> stored_us;  ///< when it was stored, microseconds since 1970; of a storage header
    std::optional<std::uint32_t> ticks;     ///< when it was logged, tenths of a millisecond since its machine's start
    std::string ecu;
    std::string application;
    std::string context;
    std::optional<std::uint32_t> session;  ///< the process, where the sender says it
    int level{0};                          ///< 1 fatal to 6 verbose; 0 for what is no log message
    std::vector<std::string> arguments;    ///< as log viewers show them
    std::optional<std::size_t> gap{};      ///< the byte of the trace at which what was skipped before it begins
};

/// The arguments with a blank between two of them.
std::string text_of(Message const& message);

/// Takes the bytes of a trace apart: a file of a log viewer, with a storage header before each message, what a log
/// daemon sends on a serial line, with serial headers, or on a connection, with neither. Bytes may come in pieces.
///
///     reader.add(bytes);
///     while (auto message = reader.next()) { ... }
///
/// What begins in the middle of a message, breaks off or is damaged is skipped up to the next message, and counted.
class Reader {
 public:
    void add(std::string_view bytes);

    /// Nothing follows: what is left is all that there is.
    void end();

    /// The next message that is there as a whole.
    std::optional<Message> next();

    std::size_t skipped_bytes() const { return skipped_; }

    /// The byte at which what was skipped since the last message begins.
    std::optional<std::size_t> gap() const { return gap_; }

    /// Whether the last message broke off.
    bool is_cut() const { return is_cut_; }

 private:
    enum class Framing { unknown, marked, bare };
    struct Frame;

    Frame look() const;
    Frame marked_frame() const;
    Frame bare_frame() const;
    void skip(std::size_t bytes);

    std::string waiting_;
    std::size_t place_{0};      ///< of what was not looked at yet
    std::size_t forgotten_{0};  ///< bytes before what waits
    Framing framing_{Framing::unknown};
    bool has_ended_{false};
    bool is_cut_{false};
    std::size_t skipped_{0};
    std::optional<std::size_t> gap_;
};

}  // namespace dlt

#endif
