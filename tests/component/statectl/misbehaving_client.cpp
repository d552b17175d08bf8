// A client without the library that breaks one rule of the protocol, or none: misbehaving_client [FAULT [drowsy]]. A
// drowsy one is late to read what comes after its first answer. It finds the state manager by AP_STATEMANAGER_SOCKET,
// or where a machine has it.

#include "utilities/close_failure.h"
#include "utilities/frame_assembler.h"
#include "utilities/messages.h"
#include "utilities/poll.h"
#include "utilities/protocol.h"
#include "utilities/socket.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using utilities::Type_length_value;
using utilities::Type_length_values;

constexpr int k_pause_ms = 250;  // longer than any between two bytes of a request, shorter than the pause of the check
constexpr int k_long_ms = 800;
constexpr int k_short_ms = 200;

struct Request {
    std::uint32_t number;
    std::string state;
};

[[noreturn]] void sleep_for_ever() {
    for (;;) {
        ::pause();
    }
}

class Misbehaving_client {
 public:
    Misbehaving_client(std::string fault, bool is_drowsy) : fault_(std::move(fault)), is_drowsy_(is_drowsy) {}

    [[noreturn]] void run() {
        if (has("connects")) {
            sleep_for_ever();
        }
        if (has("ends")) {
            ::signal(SIGTERM, SIG_IGN);
        }
        for (;;) {
            try {
                connect();
                talk();
            } catch (utilities::Exception_frame_too_long const&) {
                leave_nonsense();
            } catch (std::out_of_range const&) {
                leave_nonsense();
            } catch (std::runtime_error const&) {  // the connection is lost
            }
            if (has("comes-back")) {
                sleep_for_ever();
            }
        }
    }

 private:
    bool has(char const* fault) const { return fault_ == fault; }

    void end_if(char const* fault) const {
        if (fault[0] != '\0' && has(fault)) {
            std::_Exit(3);
        }
    }

    void leave_nonsense() {
        end_if("nonsense");
        assembler_ = {};
    }

    static utilities::Socket connected_socket() {
        char const* const path = std::getenv("AP_STATEMANAGER_SOCKET");
        auto const address = utilities::create_unix_address(path != nullptr ? path : utilities::get_socket_path());
        utilities::Socket socket(AF_UNIX, SOCK_STREAM, 0);
        if (::connect(socket.get_fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
            return {};
        }
        return socket;
    }

    void connect() {
        do {
            socket_ = connected_socket();
            if (socket_.get_fd() < 0) {
                end_if(was_connected_ ? "" : "waits");
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            }
        } while (socket_.get_fd() < 0);
        was_connected_ = true;
        if (!has("forgets-half")) {
            assembler_ = {};
        }
        last_number_.reset();
        say_hello();
    }

    void say_hello() {
        utilities::send_type_length_values(
            socket_, {Type_length_value(has("hello") ? "component_client_v2" : "component_client_v1"),
                      Type_length_value("misbehaving"), Type_length_value(has("keeps-state") ? "kOn" : state_)});
        if (has("one-connection") && second_.get_fd() < 0) {
            second_ = connected_socket();
        }
        if (has("unasked")) {
            utilities::send_type_length_values(
                socket_, {Type_length_value(99U), Type_length_value(state_), Type_length_value(0U)});
        }
        if (has("forgets") && !last_answer_.empty()) {
            utilities::send_type_length_values(socket_, last_answer_);
        }
    }

    // Answers requests until the connection is lost.
    void talk() {
        for (;;) {
            auto requests = next_requests();
            if (requests.size() > 100) {
                end_if("flood");
            }
            if (has("newest")) {
                std::reverse(requests.begin(), requests.end());
            }
            for (auto const& request : requests) {
                handle(request);
            }
        }
    }

    std::vector<Request> next_requests() {
        std::vector<Request> requests;
        for (int reads = 1; requests.empty(); ++reads) {
            if (reads > 10 && has("slow-bytes")) {
                sleep_for_ever();
            }
            if (is_drowsy_ && reads == 1 && last_number_) {
                std::this_thread::sleep_for(std::chrono::milliseconds(k_short_ms));
            }
            take_bytes(reads > 1);
            while (auto const message = assembler_.take()) {
                requests.push_back({message->at(0).get_uint32(), message->at(1).get_string()});
            }
        }
        return requests;
    }

    void take_bytes(bool within_request) {
        bool const resumed = has("stays") && last_number_ && state_ == "kOn";
        int const patience = within_request && has("pause") ? k_pause_ms
                             : last_number_ && has("late")  ? k_long_ms
                             : resumed                      ? k_short_ms
                                                            : -1;
        if (!socket_.poll(POLLIN, patience).second) {
            end_if("stays");
            sleep_for_ever();
        }
        std::array<std::uint8_t, 65'536> buffer{};
        assembler_.append(buffer.data(), socket_.recv(buffer.data(), buffer.size(), 0));
    }

    void handle(Request const& request) {
        if (last_number_ == request.number) {
            end_if("duplicate");
        }
        bool const is_ignored = has("answers") ||
                                (has("falling-number") && last_number_ && request.number < *last_number_) ||
                                (has("unknown-state") && request.state != "kOn" && request.state != "kPrepSD") ||
                                (has("same-state") && request.state == state_);
        last_number_ = request.number;
        if (is_ignored) {
            return;
        }
        state_ = has("state") ? "kOn" : request.state;
        auto const number = has("number") ? request.number % 65'536 : request.number;
        bool const fails =
            (has("prepares") && request.state == "kPrepSD") || (has("resumes") && request.state == "kOn");
        last_answer_ = {Type_length_value(number), Type_length_value(state_),
                        Type_length_value(has("answer-form") ? 9U
                                          : fails            ? 1U
                                                             : 0U)};
        utilities::send_type_length_values(socket_, last_answer_);
        if (has("once")) {
            utilities::send_type_length_values(socket_, last_answer_);
        }
    }

    std::string fault_;
    bool is_drowsy_;
    utilities::Socket socket_;
    utilities::Socket second_;
    utilities::Frame_assembler assembler_;
    bool was_connected_{false};
    std::string state_{"kOn"};
    std::optional<std::uint32_t> last_number_;
    Type_length_values last_answer_;
};

}  // namespace

int main(int argc, char** argv) {
    ::signal(SIGPIPE, SIG_IGN);
    Misbehaving_client(argc > 1 ? argv[1] : "", argc > 2).run();
}

// Programs without a log pass over it.
namespace utilities {
void report_close_failure(int /*error*/) {}
}  // namespace utilities
