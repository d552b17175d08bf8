#ifndef TOOLS_DLT_PAYLOAD_H
#define TOOLS_DLT_PAYLOAD_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dlt {

/// Reads numbers and texts one after the other from bytes, and never more than there are: what is missing is 0 or
/// empty, and makes it not `good()`.
class Cursor {
 public:
    Cursor(std::string_view bytes, bool is_big_endian) : bytes_(bytes), is_big_endian_(is_big_endian) {}

    std::uint64_t number(std::size_t size);
    std::string_view bytes(std::size_t size);

    bool good() const { return good_; }
    bool at_end() const { return bytes_.empty(); }

 private:
    std::string_view bytes_;
    bool is_big_endian_;
    bool good_{true};
};

/// The arguments of a verbose message, as text: up to the first one that is cut or of an unknown type.
std::vector<std::string> arguments_in(Cursor payload, std::size_t count);

}  // namespace dlt

#endif
