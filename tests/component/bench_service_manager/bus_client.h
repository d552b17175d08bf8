#ifndef TESTS_COMPONENT_BENCH_SERVICE_MANAGER_BUS_CLIENT_H
#define TESTS_COMPONENT_BENCH_SERVICE_MANAGER_BUS_CLIENT_H

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

namespace bench::service_manager {

constexpr char const* k_service = "org.freedesktop.systemd1";
constexpr char const* k_object = "/org/freedesktop/systemd1";
constexpr char const* k_manager = "org.freedesktop.systemd1.Manager";

/// A client of the service manager as ara::exec's is one. Results are texts; an error is its D-Bus name.
class Bus_client {
 public:
    explicit Bus_client(std::string const& address) {
        EXPECT_GE(sd_bus_new(&bus_), 0);
        EXPECT_GE(sd_bus_set_address(bus_, address.c_str()), 0);
        EXPECT_GE(sd_bus_set_bus_client(bus_, 1), 0);
        EXPECT_GE(sd_bus_start(bus_), 0);
        sd_bus_match_signal(bus_, nullptr, k_service, nullptr, nullptr, nullptr, &Bus_client::on_signal, this);
    }
    ~Bus_client() { sd_bus_flush_close_unref(bus_); }
    Bus_client(Bus_client const&) = delete;
    Bus_client& operator=(Bus_client const&) = delete;

    /// The job's path.
    std::string start(std::string const& unit) { return call("StartUnit", {unit, "replace"}); }

    /// A manager's method with texts as arguments that answers with an object path, or with nothing.
    std::string call(char const* method, std::vector<std::string> const& arguments, std::uint64_t limit_ms = 10'000) {
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_call(bus_, &message, k_service, k_object, k_manager, method);
        for (std::string const& argument : arguments) {
            sd_bus_message_append(message, "s", argument.c_str());
        }
        sd_bus_error error{};
        sd_bus_message* reply = nullptr;
        std::string result;
        if (sd_bus_call(bus_, message, limit_ms * 1000, &error, &reply) < 0) {
            result = error.name;
        } else if (char const* path = nullptr; sd_bus_message_read(reply, "o", &path) > 0) {
            result = path;
        }
        sd_bus_error_free(&error);
        sd_bus_message_unref(reply);
        sd_bus_message_unref(message);
        return result;
    }

    std::string active_state(std::string const& path) {
        char* value = nullptr;
        sd_bus_error error{};
        std::string result;
        if (sd_bus_get_property_string(bus_, k_service, path.c_str(), "org.freedesktop.systemd1.Unit", "ActiveState",
                                       &error, &value) < 0) {
            result = error.name;
        } else {
            result = value;
        }
        ::free(value);
        sd_bus_error_free(&error);
        return result;
    }

    /// The names that ListUnitsByPatterns gives for one state (empty for any) and one pattern.
    std::vector<std::string> list(std::string const& state, std::string const& pattern) {
        sd_bus_message* reply = nullptr;
        sd_bus_error error{};
        std::vector<std::string> names;
        std::vector<char const*> const states = state.empty() ? std::vector<char const*>() : std::vector{state.c_str()};
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_call(bus_, &message, k_service, k_object, k_manager, "ListUnitsByPatterns");
        sd_bus_message_append(message, "as", static_cast<int>(states.size()), states.empty() ? nullptr : states[0]);
        sd_bus_message_append(message, "as", 1, pattern.c_str());
        EXPECT_GE(sd_bus_call(bus_, message, 0, &error, &reply), 0) << error.name;
        sd_bus_message_enter_container(reply, 'a', "(ssssssouso)");
        char const* name = nullptr;
        while (sd_bus_message_enter_container(reply, 'r', "ssssssouso") > 0) {
            sd_bus_message_read(reply, "s", &name);
            sd_bus_message_skip(reply, "sssssouso");
            sd_bus_message_exit_container(reply);
            names.emplace_back(name);
        }
        sd_bus_message_unref(reply);
        sd_bus_message_unref(message);
        sd_bus_error_free(&error);
        return names;
    }

    /// Waits for a JobRemoved signal and returns "UNIT RESULT" of it; empty after ten seconds.
    std::string await_job() {
        for (int turn = 0; jobs_.empty() && turn < 1000; ++turn) {
            while (sd_bus_process(bus_, nullptr) > 0) {
            }
            if (jobs_.empty()) {
                sd_bus_wait(bus_, 10'000);
            }
        }
        if (jobs_.empty()) {
            return {};
        }
        std::string const first = jobs_.front();
        jobs_.erase(jobs_.begin());
        return first;
    }

    std::vector<std::string> const& signals() const { return signals_; }

 private:
    static int on_signal(sd_bus_message* signal, void* self, sd_bus_error*) {
        auto* const client = static_cast<Bus_client*>(self);
        client->signals_.emplace_back(sd_bus_message_get_member(signal));
        if (client->signals_.back() == "JobRemoved") {
            char const* unit = nullptr;
            char const* result = nullptr;
            sd_bus_message_skip(signal, "uo");
            sd_bus_message_read(signal, "ss", &unit, &result);
            client->jobs_.push_back(std::string(unit) + " " + result);
        }
        return 0;
    }

    sd_bus* bus_{nullptr};
    std::vector<std::string> signals_;
    std::vector<std::string> jobs_;
};

}  // namespace bench::service_manager

#endif
