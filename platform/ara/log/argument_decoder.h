#ifndef ARA_LOG_ARGUMENT_DECODER_H
#define ARA_LOG_ARGUMENT_DECODER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace ara::log {

/// One argument of a message: text, boolean, signed or unsigned number, or bytes.
using Argument = std::variant<std::string, bool, std::int64_t, std::uint64_t, std::vector<std::uint8_t>>;

/// Takes apart what Argument_encoder encoded; stops at what it does not know or what is cut short.
std::vector<Argument> decode_arguments(char const* data, std::size_t size);

/// The arguments as one line of text, with a blank between two of them as log viewers show them.
std::string to_text(std::vector<Argument> const& arguments);

}  // namespace ara::log

#endif
