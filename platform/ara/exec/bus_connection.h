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
struct Slot_deleter {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using Bus = std::unique_ptr<sd_bus, Bus_deleter>;
using Message = std::unique_ptr<sd_bus_message, Message_deleter>;

/// What a call came to: a reply, or the name of the error that the service manager answered with.
struct Answer {
    Message reply;
    std::string error;
};

/// The connection of one StateClient to the service manager on the system bus. Every call ends by its deadline.
///
/// The bus may be slow to greet: a call is queued behind the greeting, so that it reaches the service manager also when
/// its caller has given it up. `request` is for calls that matter then, too: the newest one is kept and `finish` waits
/// for its answer. The connection is not given up for a late answer, since the service manager asks the bus who may do
/// this, and refuses a caller that has gone.
class StateClient::Connection {
 public:
    using Deadline = std::chrono::steady_clock::time_point;

    /// Connects, so that the first call does not have to. Fails silently; the first call tries again.
    void connect(Deadline deadline);

    /// Calls a method of the manager object with a message that `fill` completes. Connects when there is no connection,
    /// and once more when the kept one turns out to be broken. Throws `std::runtime_error` when no answer came.
    template <class Fill>
    Answer ask(char const* method, Fill const& fill) {
        std::unique_ptr<Call> call;
        return perform(call, method, "", fill);
    }

    /// The same for a call that asks for something; `object` is what its failure is told with.
    template <class Fill>
    Answer request(char const* method, std::string const& object, Fill const& fill) {
        return perform(newest_request_, method, object, fill);
    }

    /// Waits for the answer to the newest request when that was given up; one that is not a success is told on standard
    /// error, since nobody else hears of it. While the process stands still time passes in vain, and whoever should
    /// answer may have stood still with it: a second of that counts at most.
    void finish(std::chrono::microseconds patience);

 private:
    struct Broken : std::runtime_error {
        using std::runtime_error::runtime_error;
    };

    struct Call {
        std::string name;
        Message answer;
        std::unique_ptr<sd_bus_slot, Slot_deleter> slot;  // goes first: nothing arrives any more
    };

    template <class Fill>
    Answer perform(std::unique_ptr<Call>& call, char const* method, std::string const& object, Fill const& fill) {
        auto const deadline = std::chrono::steady_clock::now() + k_time_limit;
        auto const exchange = [&] {
            call = send(make_call(method, fill), std::string(method) + " " + object);
            return answer_to(call, deadline);
        };
        bool const was_open = static_cast<bool>(bus_);
        try {
            return exchange();
        } catch (Broken const&) {
            close();
            if (!was_open) {
                throw;
            }
        }
        return exchange();
    }

    template <class Fill>
    Message make_call(char const* method, Fill const& fill) {
        open();
        auto message = new_call(method);
        check(fill(message.get()), "request could not be made");
        return message;
    }

    static void check(int result, char const* what);
    static int on_answer(sd_bus_message* answer, void* call, sd_bus_error* error);
    void open();
    void close();
    bool progress(Deadline deadline);
    template <class Condition>
    bool progress_until(Condition const& is_met, Deadline deadline);
    Message new_call(char const* method);
    std::unique_ptr<Call> send(Message message, std::string name);
    Answer answer_to(std::unique_ptr<Call>& call, Deadline deadline);
    bool is_greeted(Deadline deadline);
    bool is_answered(Call const& call, Deadline deadline);
    bool is_answered(Call const& call, std::chrono::microseconds patience);

    Bus bus_;
    std::unique_ptr<Call> newest_request_;
};

}  // namespace ara::exec

#endif
