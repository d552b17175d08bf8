#include "benchmarks/communication/yardsticks.h"

#include <system_error>

#include <systemd/sd-bus.h>

namespace benchmarks {

namespace {

constexpr char const* k_name = "benchmark.Alive";
constexpr char const* k_path = "/benchmark/alive";
constexpr char const* k_interface = "benchmark.Alive";
constexpr char const* k_method = "RequestAlive";

void check(int result, char const* what) {
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), what);
    }
}

int request_alive(sd_bus_message* call, void* /*context*/, sd_bus_error* /*error*/) {
    return sd_bus_reply_method_return(call, "");
}

sd_bus_vtable const k_table[] = {SD_BUS_VTABLE_START(0),
                                 SD_BUS_METHOD(k_method, "", "", request_alive, SD_BUS_VTABLE_UNPRIVILEGED),
                                 SD_BUS_VTABLE_END};

}  // namespace

class Bus_call::Connection {
 public:
    explicit Connection(std::string const& address) {
        check(sd_bus_new(&bus_), "sd_bus_new");
        check(sd_bus_set_address(bus_, address.c_str()), "sd_bus_set_address");
        check(sd_bus_set_bus_client(bus_, 1), "sd_bus_set_bus_client");
        check(sd_bus_start(bus_), "sd_bus_start");
    }
    ~Connection() { sd_bus_flush_close_unref(bus_); }
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;

    sd_bus* get() const { return bus_; }

 private:
    sd_bus* bus_{nullptr};
};

Bus_call::Bus_call(std::string const& address) : connection_(std::make_unique<Connection>(address)) {}

Bus_call::~Bus_call() = default;

void Bus_call::operator()() const {
    sd_bus_message* reply = nullptr;
    check(sd_bus_call_method(connection_->get(), k_name, k_path, k_interface, k_method, nullptr, &reply, ""), k_method);
    sd_bus_message_unref(reply);
}

void serve_bus(std::string const& address, std::function<void()> const& ready) {
    Bus_call const connected(address);
    sd_bus* const bus = connected.connection_->get();
    check(sd_bus_add_object_vtable(bus, nullptr, k_path, k_interface, k_table, nullptr), "vtable");
    check(sd_bus_request_name(bus, k_name, 0), "name");
    ready();
    for (;;) {
        int const processed = sd_bus_process(bus, nullptr);
        check(processed, "process");
        if (processed == 0) {
            check(sd_bus_wait(bus, UINT64_MAX), "wait");
        }
    }
}

}  // namespace benchmarks
