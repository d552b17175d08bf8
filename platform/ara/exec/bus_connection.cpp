#include "bus_connection.h"

#include <cerrno>
#include <cstring>
#include <string_view>

namespace ara::exec {

namespace {

constexpr char const* k_service = "org.freedesktop.systemd1";
constexpr char const* k_object = "/org/freedesktop/systemd1";
constexpr char const* k_interface = "org.freedesktop.systemd1.Manager";

std::uint64_t microseconds_until(std::chrono::steady_clock::time_point deadline) {
    auto const left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
    return left.count() > 0 ? static_cast<std::uint64_t>(left.count()) : 1;  // 0 means libsystemd's own default
}

bool is_over(std::chrono::steady_clock::time_point deadline) {
    return std::chrono::steady_clock::now() >= deadline;
}

class Bus_error {
 public:
    Bus_error() = default;
    ~Bus_error() { sd_bus_error_free(&error_); }
    Bus_error(Bus_error const&) = delete;
    Bus_error& operator=(Bus_error const&) = delete;

    sd_bus_error* get() { return &error_; }
    std::string_view name() const { return error_.name != nullptr ? error_.name : ""; }
    std::string text() const { return error_.message != nullptr ? error_.message : std::string(name()); }

    /// The manager itself declined: an error of its own, or one about rights or arguments.
    bool is_refusal() const {
        auto const own = name().substr(0, std::strlen(k_service)) == k_service;
        return own || name() == SD_BUS_ERROR_ACCESS_DENIED || name() == SD_BUS_ERROR_INVALID_ARGS ||
               name() == SD_BUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED || name() == SD_BUS_ERROR_AUTH_FAILED;
    }

 private:
    sd_bus_error error_ = SD_BUS_ERROR_NULL;
};

}  // namespace

void StateClient::Connection::check(int result, char const* what) {
    if (result < 0) {
        throw Broken(std::string(what) + ": " + std::strerror(-result));
    }
}

Message StateClient::Connection::new_call(char const* method) {
    sd_bus_message* message = nullptr;
    check(sd_bus_message_new_method_call(bus_.get(), &message, k_service, k_object, k_interface, method),
          "request could not be made");
    return Message(message);
}

// libsystemd would wait for the bus's greeting as long as the bus takes.
void StateClient::Connection::connect(Deadline deadline) {
    if (bus_) {
        return;
    }
    sd_bus* opened = nullptr;
    check(sd_bus_open_system(&opened), "no connection to the system bus");
    Bus bus(opened);
    while (sd_bus_is_ready(bus.get()) == 0) {
        auto const progress = sd_bus_process(bus.get(), nullptr);
        check(progress, "no connection to the system bus");
        if (progress == 0) {
            check(is_over(deadline) ? -ETIMEDOUT : 0, "no connection to the system bus");
            check(sd_bus_wait(bus.get(), microseconds_until(deadline)), "no connection to the system bus");
        }
    }
    bus_ = std::move(bus);
}

Answer StateClient::Connection::send(Message call, Deadline deadline) {
    Bus_error error;
    sd_bus_message* reply = nullptr;
    auto const result = sd_bus_call(bus_.get(), call.get(), microseconds_until(deadline), error.get(), &reply);
    if (result >= 0) {
        return {Message(reply), {}};
    }
    if (error.is_refusal()) {
        return {nullptr, std::string(error.name())};
    }
    if (is_over(deadline)) {
        // The connection is kept: the service manager asks who may do this, and would refuse a caller that has gone. A
        // late answer belongs to nobody.
        throw std::runtime_error("no answer from execution management in time");
    }
    throw Broken("no answer from execution management: " + error.text());
}

}  // namespace ara::exec
