#include "statemanager/smw/control_file_buffer.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

namespace ximo::ap::statemanager::smw {

namespace {

constexpr int k_closed = -1;
constexpr mode_t k_new_file_mode = 0666;  // what is left of it is for the umask to say

}  // namespace

Control_file_buffer::Control_file_buffer(std::string const& path)
    : descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, k_new_file_mode)) {}

Control_file_buffer::~Control_file_buffer() {
    if (is_open()) {
        ::close(descriptor_);
    }
}

bool Control_file_buffer::is_open() const {
    return descriptor_ != k_closed;
}

bool Control_file_buffer::close() {
    if (!is_open()) {
        return false;
    }
    bool const closed = ::close(descriptor_) == 0;
    descriptor_ = k_closed;
    return closed;
}

// Not repeated after an interruption or a short write: a word reaches the driver in one piece or not at all.
std::streamsize Control_file_buffer::xsputn(char const* bytes, std::streamsize count) {
    return std::max<std::streamsize>(0, ::write(descriptor_, bytes, static_cast<std::size_t>(count)));
}

Control_file_buffer::int_type Control_file_buffer::overflow(int_type byte) {
    if (traits_type::eq_int_type(byte, traits_type::eof())) {
        return traits_type::not_eof(byte);
    }
    char const character = traits_type::to_char_type(byte);
    return xsputn(&character, 1) == 1 ? byte : traits_type::eof();
}

}  // namespace ximo::ap::statemanager::smw
