#ifndef BENCH_SERVICE_MANAGER_BUS_SERVER_H
#define BENCH_SERVICE_MANAGER_BUS_SERVER_H

#include "bench/json_lines/control_loop.h"
#include "bench/service_manager/bus_methods.h"
#include "bench/service_manager/manager.h"

#include <memory>

#include <systemd/sd-bus.h>

namespace bench::service_manager {

/// The manager as org.freedesktop.systemd1 on the bus that DBUS_SYSTEM_BUS_ADDRESS names. Reports each call of a client
/// as an event and answers it in the loop, as the reactions say. When the bus goes away the loop ends with status 1.
class Bus_server {
 public:
    /// Refuses to start without DBUS_SYSTEM_BUS_ADDRESS, so that it never meets the machine's own service manager.
    /// Throws `std::runtime_error`. Manager and loop must outlive the server.
    Bus_server(Manager& manager, Control_loop& loop);
    ~Bus_server();
    Bus_server(Bus_server const&) = delete;
    Bus_server& operator=(Bus_server const&) = delete;

 private:
    static int on_call(sd_bus_message* call, void* self, sd_bus_error* error);
    int receive(sd_bus_message* call);
    void answer(sd_bus_message* call, Reaction const& reaction);

    struct Bus_deleter {
        void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
    };
    Manager& manager_;
    Control_loop& loop_;
    std::unique_ptr<sd_bus, Bus_deleter> bus_;
    Bus_methods methods_;
};

}  // namespace bench::service_manager

#endif
