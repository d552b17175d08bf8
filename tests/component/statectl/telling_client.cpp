// A client that says what it is told to, for the rules of check-client: telling_client STEP... It takes the first step
// when it is connected and one more for each request and each further connection; then it is silent. A step is what is
// said, messages with " ; " between them:
//   me     a string        ''   an empty one        7   a number        #ab   the bytes "ab" called a number
//   .      a message without elements
// or, at its end or alone, what is done then: close, exit, drip (a message that never comes to its end). "unread"
// closes with the next request unread.

#include "utilities/close_failure.h"
#include "utilities/frame_assembler.h"
#include "utilities/poll.h"
#include "utilities/socket.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using utilities::Bytes;
using utilities::Payload_type;
using utilities::Type_length_value;

Type_length_value element(std::string const& word) {
    if (word.front() == '#') {
        return {Payload_type::uint32, Bytes(word.begin() + 1, word.end())};
    }
    if (word.find_first_not_of("0123456789") == std::string::npos) {
        return Type_length_value(static_cast<std::uint32_t>(std::stoul(word)));
    }
    return Type_length_value(word == "''" ? std::string() : word);
}

utilities::Type_length_values elements(std::vector<std::string> const& words) {
    utilities::Type_length_values all;
    if (words.front() != ".") {
        std::transform(words.begin(), words.end(), std::back_inserter(all), element);
    }
    return all;
}

bool is_deed(std::string const& word) {
    return word == "exit" || word == "close" || word == "drip";
}

class Telling_client {
 public:
    explicit Telling_client(std::vector<std::string> steps) : steps_(std::move(steps)) {}

    [[noreturn]] void run() {
        for (;;) {
            try {
                connect();
                for (;;) {
                    take_step();
                    await_request();
                }
            } catch (std::runtime_error const&) {  // the connection is lost
            }
        }
    }

 private:
    void connect() {
        auto const address = utilities::create_unix_address(std::getenv("AP_STATEMANAGER_SOCKET"));
        assembler_ = {};
        for (;;) {
            socket_ = utilities::Socket(AF_UNIX, SOCK_STREAM, 0);
            if (::connect(socket_.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0) {
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    // What is said in one step arrives at once.
    void take_step() {
        if (next_ == steps_.size()) {
            return;
        }
        Bytes said;
        std::istringstream messages(steps_[next_++]);
        for (std::string message; std::getline(messages, message, ';');) {
            std::istringstream text(message);
            std::vector<std::string> const words{std::istream_iterator<std::string>(text), {}};
            if (is_deed(words.front())) {
                socket_.sendl(said.data(), said.size(), 0);
                act(words.front());
                return;
            }
            auto const more = utilities::serialize(elements(words));
            said.insert(said.end(), more.begin(), more.end());
        }
        socket_.sendl(said.data(), said.size(), 0);
    }

    void act(std::string const& deed) {
        if (deed == "exit") {
            std::_Exit(3);
        } else if (deed == "close") {
            close();
        } else {
            drip();
        }
    }

    [[noreturn]] void close() {
        socket_ = utilities::Socket();
        for (;;) {
            ::pause();
        }
    }

    void drip() {
        Bytes const message =
            utilities::serialize({Type_length_value(std::string(utilities::Frame_assembler::k_longest / 2, 'x'))});
        for (auto const byte : message) {
            socket_.sendl(&byte, 1, 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    void await_request() {
        while (!assembler_.take()) {
            if (next_ < steps_.size() && steps_[next_] == "unread") {
                socket_.poll(POLLIN, -1);
                close();
            }
            std::array<std::uint8_t, 4096> buffer{};
            assembler_.append(buffer.data(), socket_.recv(buffer.data(), buffer.size(), 0));
        }
    }

    std::vector<std::string> steps_;
    std::size_t next_{0};
    utilities::Socket socket_;
    utilities::Frame_assembler assembler_;
};

}  // namespace

int main(int argc, char** argv) {
    ::signal(SIGPIPE, SIG_IGN);
    Telling_client(std::vector<std::string>(argv + 1, argv + argc)).run();
}

// Programs without a log pass over it.
namespace utilities {
void report_close_failure(int /*error*/) {}
}  // namespace utilities
