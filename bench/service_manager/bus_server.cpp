#include "bench/service_manager/bus_server.h"

#include "bench/service_manager/bus_call.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace bench::service_manager {

namespace {

void require(int result, std::string const& what) {
    if (result < 0) {
        throw std::runtime_error(what + ": " + std::strerror(-result));
    }
}

sd_bus* connected_bus() {
    if (std::getenv("DBUS_SYSTEM_BUS_ADDRESS") == nullptr) {
        throw std::runtime_error("DBUS_SYSTEM_BUS_ADDRESS is not set; it must name the vehicle's own bus");
    }
    sd_bus* bus = nullptr;
    require(sd_bus_open_system(&bus), "the bus that DBUS_SYSTEM_BUS_ADDRESS names");
    return bus;
}

std::string text_or_empty(char const* text) {
    return text != nullptr ? text : "";
}

// The unit that a call is about: a manager's method has it as its first argument, a unit's object in its path.
std::string unit_of(sd_bus_message* call) {
    bool const of_manager = sd_bus_message_is_method_call(call, "org.freedesktop.systemd1.Manager", nullptr) > 0;
    return of_manager ? first_text(call) : unit_at(text_or_empty(sd_bus_message_get_path(call)));
}

}  // namespace

Bus_server::Bus_server(Manager& manager, Control_loop& loop)
    : manager_(manager), loop_(loop), bus_(connected_bus()), methods_(manager, loop, bus_.get()) {
    require(sd_bus_add_fallback(bus_.get(), nullptr, "/org/freedesktop/systemd1", &Bus_server::on_call, this),
            "sd_bus_add_fallback");
    require(sd_bus_set_exit_on_disconnect(bus_.get(), 1), "sd_bus_set_exit_on_disconnect");
    require(sd_bus_attach_event(bus_.get(), loop.native(), SD_EVENT_PRIORITY_NORMAL), "sd_bus_attach_event");
    require(sd_bus_request_name(bus_.get(), "org.freedesktop.systemd1", 0), "org.freedesktop.systemd1");
}

Bus_server::~Bus_server() {
    sd_bus_detach_event(bus_.get());
}

int Bus_server::on_call(sd_bus_message* call, void* self, sd_bus_error*) {
    return static_cast<Bus_server*>(self)->receive(call);
}

int Bus_server::receive(sd_bus_message* call) {
    std::string const method = text_or_empty(sd_bus_message_get_member(call));
    std::string const unit = unit_of(call);
    Reaction const reaction = manager_.plan().take(method, unit);
    nlohmann::json details{{"method", method}, {"sender", text_or_empty(sd_bus_message_get_sender(call))}};
    if (!unit.empty()) {
        details["unit"] = unit;
    }
    if (method == "StartUnit" || method == "StopUnit") {
        details["mode"] = second_text(call);
    }
    loop_.event("call", details);
    if (reaction.silent) {
        return 1;
    }
    if (reaction.delay.count() == 0) {
        answer(call, reaction);
        return 1;
    }
    std::shared_ptr<sd_bus_message> const held = hold(call);
    loop_.after(reaction.delay, [this, held, reaction] { answer(held.get(), reaction); });
    return 1;
}

void Bus_server::answer(sd_bus_message* call, Reaction const& reaction) {
    if (!reaction.error.empty()) {
        sd_bus_reply_method_errorf(call, reaction.error.c_str(), "The bench was told to answer so.");
    } else if (!methods_.carry_out(call, reaction)) {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_METHOD, "Not played by the bench.");
    }
}

}  // namespace bench::service_manager
