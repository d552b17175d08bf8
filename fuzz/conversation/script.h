#ifndef FUZZ_CONVERSATION_SCRIPT_H
#define FUZZ_CONVERSATION_SCRIPT_H

#include "utilities/frame_assembler.h"
#include "utilities/socket.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace fuzz {

/// Plays up to four clients from a script of bytes. A step is one byte, client in the upper and what to do in the lower
/// half, and the bytes that it needs:
///
///     0 connect              1 send raw bytes: count, bytes      2 introduce: name, state
///     3 answer what was asked last: added to its number, state, status
///     4 send the first bytes of an introduction: count           5 read
///     6 close                7 close the way out                 8 ask clients: who, state
///
/// A script that ends early reads on as zeros. Clients never wait.
class Script {
 public:
    /// Called for step 8.
    using Ask = std::function<void(std::uint8_t who, std::string const& state)>;

    Script(std::string path, std::uint8_t const* data, std::size_t size, Ask ask)
        : path_(std::move(path)), next_(data), end_(data + size), ask_(std::move(ask)) {}

    void play();

    /// The words that names and states are taken from.
    static std::string word(std::uint8_t number);

 private:
    struct Client {
        utilities::Socket socket;
        utilities::Frame_assembler frames;
        std::uint32_t asked{0};
    };

    void step();
    void connect(Client& client) const;
    void read(Client& client) const;
    static void send(Client& client, utilities::Bytes const& bytes);
    utilities::Bytes take_bytes();
    utilities::Bytes take_introduction();
    std::uint8_t take() { return next_ == end_ ? std::uint8_t{0} : *next_++; }

    std::string path_;
    std::uint8_t const* next_;
    std::uint8_t const* end_;
    Ask ask_;
    std::array<Client, 4> clients_;
};

}  // namespace fuzz

#endif
