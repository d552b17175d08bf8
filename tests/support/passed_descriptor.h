#ifndef TESTS_SUPPORT_PASSED_DESCRIPTOR_H
#define TESTS_SUPPORT_PASSED_DESCRIPTOR_H

#include "utilities/serialization.h"

#include <array>
#include <cstring>

#include <sys/socket.h>

namespace test_support {

/// Sends bytes with a descriptor of this process's, with the flags that ::send takes; no signal comes when the peer has
/// gone. Returns what ::sendmsg returns.
inline ssize_t send_with_descriptor(int socket, utilities::Bytes bytes, int descriptor, int flags = 0) {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof descriptor)> control{};
    iovec part{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    auto* const header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    return ::sendmsg(socket, &message, flags | MSG_NOSIGNAL);
}

}  // namespace test_support

#endif
