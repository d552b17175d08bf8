// What a test or a player tells the hypervisor about input devices. Each command takes its arguments, refuses any that
// are left, changes the model, and answers with what it touched.

#include "bench/hypervisor/commands.h"
#include "bench/hypervisor/key_names.h"
#include "bench/json_lines/clock.h"

namespace bench::hypervisor {

namespace {

using nlohmann::json;

std::shared_ptr<Input_device> device_of(Model const& model, Arguments& arguments) {
    std::string const name = arguments.text_or("device", "event0");
    auto device = model.device(name);
    if (!device) {
        throw Command_error("there is no device \"" + name + "\"");
    }
    return device;
}

std::uint16_t event_type_of(Arguments& arguments) {
    json const* const value = arguments.find("type");
    if (value == nullptr || !value->is_string()) {
        return static_cast<std::uint16_t>(arguments.number_or("type", EV_KEY, 0, UINT16_MAX));
    }
    auto const type = event_type(value->get<std::string>());
    if (!type) {
        throw Command_error("\"" + value->get<std::string>() + "\" is not an event type");
    }
    return *type;
}

std::uint16_t key_of(Arguments& arguments) {
    json const* const value = arguments.find("key");
    if (value == nullptr || !value->is_string()) {
        return static_cast<std::uint16_t>(arguments.number("key", 0, KEY_MAX));
    }
    auto const code = key_code(value->get<std::string>());
    if (!code) {
        throw Command_error("\"" + value->get<std::string>() + "\" is not a key");
    }
    return *code;
}

std::uint64_t event_types_of(Arguments& arguments) {
    auto const names = arguments.optional_texts("events");
    if (!names) {
        return 1U << EV_SYN | 1U << EV_KEY;
    }
    std::uint64_t types = 0;
    for (std::string const& name : *names) {
        auto const type = event_type(name);
        if (!type) {
            throw Command_error("\"" + name + "\" is not an event type");
        }
        types |= std::uint64_t{1} << *type;
    }
    return types;
}

json press(Model& model, Arguments& arguments) {
    auto const device = device_of(model, arguments);
    std::uint16_t const code = key_of(arguments);
    std::uint16_t const type = event_type_of(arguments);
    arguments.end();
    std::int64_t const time = monotonic_ns();
    device->press(type, code);
    model.changed(*device);
    return {{"device", device->name()}, {"code", code}, {"t", time}};
}

json record(Model& model, Arguments& arguments) {
    auto const device = device_of(model, arguments);
    auto const type = static_cast<std::uint16_t>(arguments.number("type", 0, UINT16_MAX));
    auto const code = static_cast<std::uint16_t>(arguments.number("code", 0, UINT16_MAX));
    auto const value = static_cast<std::int32_t>(arguments.number("value", INT32_MIN, INT32_MAX));
    arguments.end();
    std::int64_t const time = monotonic_ns();
    device->send(type, code, value);
    model.changed(*device);
    return {{"device", device->name()}, {"t", time}};
}

json add_device(Model& model, Arguments& arguments) {
    std::string const name = arguments.text("device");
    std::uint64_t const types = event_types_of(arguments);
    arguments.end();
    if (!model.add_device(name, types)) {
        throw Command_error("\"" + name + "\" is taken or is no file name");
    }
    return {{"device", name}};
}

json remove_device(Model& model, Arguments& arguments) {
    auto const device = device_of(model, arguments);
    arguments.end();
    model.remove_device(device->name());
    return {{"device", device->name()}};
}

json hang_up(Model& model, Arguments& arguments) {
    auto const device = device_of(model, arguments);
    bool const keep_announcing = arguments.flag_or("keep_announcing", false);
    arguments.end();
    device->hang_up(keep_announcing);
    model.changed(*device);
    return {{"device", device->name()}};
}

}  // namespace

void add_device_commands(Command_table& table, Model& model) {
    table.add("press", [&model](Arguments& arguments) { return press(model, arguments); });
    table.add("record", [&model](Arguments& arguments) { return record(model, arguments); });
    table.add("add_device", [&model](Arguments& arguments) { return add_device(model, arguments); });
    table.add("remove_device", [&model](Arguments& arguments) { return remove_device(model, arguments); });
    table.add("hang_up", [&model](Arguments& arguments) { return hang_up(model, arguments); });
}

}  // namespace bench::hypervisor
