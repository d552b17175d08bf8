#ifndef ARA_EXEC_BUS_CONNECTION_H
#define ARA_EXEC_BUS_CONNECTION_H

#include "ara/exec/state_client.h"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>

#include <systemd/sd-bus.h>

namespace ara::exec {

struct Bus_deleter {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct Message_deleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, Bus_deleter>;
using Message = std::unique_ptr<sd_bus_message, Message_deleter>;

/// What a call came to: a reply, or the name of the error that the service manager answered with.
struct Answer {
    Message reply;
    std::string error;
};

/// The connection of one StateClient to the service manager on the system bus. Every call ends by its deadline.
class StateClient::Connection {
 public:
    using Deadline = std::chrono::steady_clock::time_point;

    /// Calls a method of the manager object with a message that `fill` completes. Connects when there is no connection,
    /// and once more when the kept one turns out to be broken. Throws `std::runtime_error` when no answer came.
    template <class Fill>
    Answer call(char const* method, Fill const& fill) {
        auto const deadline = std::chrono::steady_clock::now() + k_time_limit;
        bool const was_connected = static_cast<bool>(bus_);
        connect(deadline);
        try {
            return send(make_call(method, fill), deadline);
        } catch (Broken const&) {
            bus_.reset();
            if (!was_connected) {
                throw;
            }
        }
        connect(deadline);
        return send(make_call(method, fill), deadline);
    }

 private:
    struct Broken : std::runtime_error {
        using std::runtime_error::runtime_error;
    };

    template <class Fill>
    Message make_call(char const* method, Fill const& fill) {
        auto message = new_call(method);
        check(fill(message.get()), "request could not be made");
        return message;
    }

    static void check(int result, char const* what);
    Message new_call(char const* method);
    void connect(Deadline deadline);
    Answer send(Message call, Deadline deadline);

    Bus bus_;
};

}  // namespace ara::exec

#endif
