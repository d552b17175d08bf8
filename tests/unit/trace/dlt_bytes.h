#ifndef TESTS_UNIT_TRACE_DLT_BYTES_H
#define TESTS_UNIT_TRACE_DLT_BYTES_H

#include <cstdint>
#include <string>
#include <vector>

namespace trace_test {

/// What stands before each message.
enum class Framing { storage, serial, none };

/// A log message whose arguments are texts, with what is of interest about it.
struct Words {
    std::vector<std::string> arguments;
    double time{0};  ///< seconds since the machine's start
    int level{4};
    std::string application{"STMG"};
    std::uint32_t process{1};
    std::int64_t stored{1'800'000'000};  ///< seconds
};

/// The bytes of a message.
std::string bytes_of(Words const& words, Framing framing = Framing::storage);

/// The bytes of a message with one argument that is given as it stands in the message, type and all.
std::string bytes_of_argument(std::string const& argument, bool is_big_endian);

/// A number as bytes, least significant first.
std::string little(std::uint64_t value, int size);

/// The same, most significant first.
std::string big(std::uint64_t value, int size);

}  // namespace trace_test

#endif
