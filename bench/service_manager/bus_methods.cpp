#include "bench/service_manager/bus_methods.h"

#include "bench/service_manager/bus_call.h"

#include <string>

namespace bench::service_manager {

namespace {

constexpr char const* k_manager_path = "/org/freedesktop/systemd1";
constexpr char const* k_manager_interface = "org.freedesktop.systemd1.Manager";
constexpr char const* k_unit_interface = "org.freedesktop.systemd1.Unit";
constexpr char const* k_no_such_unit = "org.freedesktop.systemd1.NoSuchUnit";

void reply_no_such_unit(sd_bus_message* call, std::string const& unit) {
    sd_bus_reply_method_errorf(call, k_no_such_unit, "Unit %s not found.", unit.c_str());
}

// The real one asks the bus who wants a job, to see whether that one may have it.
bool caller_is_there(sd_bus_message* call) {
    sd_bus_creds* credentials = nullptr;
    bool const known = sd_bus_query_sender_creds(call, SD_BUS_CREDS_EUID, &credentials) >= 0;
    sd_bus_creds_unref(credentials);
    return known;
}

std::string path_of(Job const& job) {
    return "/org/freedesktop/systemd1/job/" + std::to_string(job.id);
}

}  // namespace

bool Bus_methods::carry_out(sd_bus_message* call, Reaction const& reaction) {
    char const* const name = sd_bus_message_get_member(call);
    std::string const method = name != nullptr ? name : "";
    if (method == "StartUnit" || method == "StopUnit") {
        start_or_stop(call, method == "StartUnit", reaction);
    } else if (method == "GetUnit" || method == "LoadUnit") {
        get_unit(call, method == "LoadUnit");
    } else if (method.rfind("ListUnits", 0) == 0) {
        list_units(call, method);
    } else if (method == "Get") {
        get_property(call);
    } else if (method == "GetAll") {
        get_all_properties(call);
    } else if (method == "Subscribe" || method == "Unsubscribe") {
        sd_bus_reply_method_return(call, "");
    } else {
        return false;
    }
    return true;
}

void Bus_methods::start_or_stop(sd_bus_message* call, bool start, Reaction const& reaction) {
    std::string const name = first_text(call);
    if (!caller_is_there(call)) {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "The caller has gone.");
        loop_.event("refused", {{"unit", name}, {"start", start}});
        return;
    }
    Unit* const unit = manager_.units().find(name);
    if (unit == nullptr) {
        reply_no_such_unit(call, name);
        return;
    }
    std::string const before = unit->active;
    Job const job = manager_.begin(*unit, start, reaction.job_result);
    std::string const path = path_of(job);
    sd_bus_emit_signal(bus_, k_manager_path, k_manager_interface, "JobNew", "uos", job.id, path.c_str(), name.c_str());
    if (unit->active != before) {
        announce_change(*unit);
    }
    sd_bus_reply_method_return(call, "o", path.c_str());
    // Also a job without a delay ends after its call was answered.
    loop_.after(reaction.job_delay, [this, job] { end_job(job); });
}

void Bus_methods::end_job(Job const& job) {
    for (Unit const* const unit : manager_.end(job)) {
        announce_change(*unit);
    }
    sd_bus_emit_signal(bus_, k_manager_path, k_manager_interface, "JobRemoved", "uoss", job.id, path_of(job).c_str(),
                       job.unit->name.c_str(), job.result.c_str());
    loop_.event("job", {{"unit", job.unit->name}, {"start", job.start}, {"result", job.result}, {"id", job.id}});
}

void Bus_methods::announce_change(Unit const& unit) {
    sd_bus_message* created = nullptr;
    if (sd_bus_message_new_signal(bus_, &created, service_manager::path_of(unit.name).c_str(),
                                  "org.freedesktop.DBus.Properties", "PropertiesChanged") >= 0) {
        Message const signal(created);
        sd_bus_message_append(signal.get(), "sa{sv}as", k_unit_interface, 2, "ActiveState", "s", unit.active.c_str(),
                              "SubState", "s", unit.sub_state().c_str(), 0);
        sd_bus_send(bus_, signal.get(), nullptr);
    }
    loop_.event("unit", {{"unit", unit.name}, {"active", unit.active}});
}

void Bus_methods::get_unit(sd_bus_message* call, bool load) {
    std::string const name = first_text(call);
    Unit* const unit = manager_.units().find(name);
    if (load && unit != nullptr) {
        manager_.units().load(*unit);
    }
    if (unit == nullptr || !unit->loaded) {
        reply_no_such_unit(call, name);
        return;
    }
    sd_bus_reply_method_return(call, "o", service_manager::path_of(name).c_str());
}

void Bus_methods::list_units(sd_bus_message* call, std::string const& method) {
    bool const by_names = method == "ListUnitsByNames";
    auto const states = by_names ? std::vector<std::string>() : read_texts(call);
    auto const patterns = read_texts(call);
    sd_bus_message* created = nullptr;
    if (sd_bus_message_new_method_return(call, &created) < 0) {
        return;
    }
    Message const reply(created);
    append_units(reply.get(), manager_.units().matching(states, patterns));
    sd_bus_send(bus_, reply.get(), nullptr);
}

void Bus_methods::get_property(sd_bus_message* call) {
    char const* interface = nullptr;
    char const* property = nullptr;
    sd_bus_message_read(call, "ss", &interface, &property);
    std::string const unit_name = unit_at(sd_bus_message_get_path(call));
    Unit const* const unit = manager_.units().find(unit_name);
    if (unit == nullptr || property == nullptr) {
        reply_no_such_unit(call, unit_name);
        return;
    }
    for (auto const& [name, value] : properties_of(*unit)) {
        if (name == property) {
            sd_bus_reply_method_return(call, "v", "s", value.c_str());
            return;
        }
    }
    sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_PROPERTY, "Unknown property %s", property);
}

void Bus_methods::get_all_properties(sd_bus_message* call) {
    std::string const unit_name = unit_at(sd_bus_message_get_path(call));
    Unit const* const unit = manager_.units().find(unit_name);
    sd_bus_message* created = nullptr;
    if (unit == nullptr) {
        reply_no_such_unit(call, unit_name);
        return;
    }
    if (sd_bus_message_new_method_return(call, &created) < 0) {
        return;
    }
    Message const reply(created);
    sd_bus_message_open_container(created, 'a', "{sv}");
    for (auto const& [name, value] : properties_of(*unit)) {
        sd_bus_message_append(created, "{sv}", name.c_str(), "s", value.c_str());
    }
    sd_bus_message_close_container(created);
    sd_bus_send(bus_, created, nullptr);
}

}  // namespace bench::service_manager
