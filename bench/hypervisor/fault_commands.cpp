#include "bench/hypervisor/commands.h"

namespace bench::hypervisor {

namespace {

using nlohmann::json;

// Longer answers would look like a dead hypervisor: the kernel's request can't be taken back.
constexpr std::int64_t k_longest_delay_ms = 60'000;

Fault_plan& faults_of(Model const& model, std::string const& file) {
    if (auto const device = model.device(file)) {
        return device->faults();
    }
    if (auto const control = model.control_file(file)) {
        return control->faults();
    }
    throw Command_error("there is no file \"" + file + "\"");
}

Operation operation_of(Model const& model, std::string const& file, std::string const& name) {
    bool const is_device = model.device(file) != nullptr;
    if (name == "open") {
        return Operation::open;
    }
    if (name == "write" && !is_device) {
        return Operation::write;
    }
    if (name == "read" && is_device) {
        return Operation::read;
    }
    if (name == "ioctl" && is_device) {
        return Operation::ioctl;
    }
    throw Command_error("\"" + file + "\" has no operation \"" + name + "\"");
}

json fault(Model& model, Arguments& arguments) {
    std::string const file = arguments.text("file");
    Fault_plan& plan = faults_of(model, file);
    Operation const operation = operation_of(model, file, arguments.text("operation"));
    Fault fault;
    fault.error = arguments.optional_errno("errno").value_or(0);
    if (auto const accepted = arguments.optional_number("bytes", 0, INT32_MAX)) {
        fault.accepted_bytes = static_cast<std::size_t>(*accepted);
    }
    fault.delay = std::chrono::milliseconds(arguments.number_or("delay_ms", 0, 0, k_longest_delay_ms));
    auto const count = static_cast<std::uint64_t>(arguments.number_or("count", 1, 1, INT64_MAX));
    arguments.end();
    if (fault.accepted_bytes && (fault.error != 0 || operation != Operation::write)) {
        throw Command_error("\"bytes\" is for a write that does not fail");
    }
    if (fault.error == 0 && !fault.accepted_bytes && fault.delay.count() == 0) {
        throw Command_error(R"(a fault needs "errno", "bytes" or "delay_ms")");
    }
    plan.add(operation, fault, count);
    if (auto const device = model.device(file)) {
        model.changed(*device);
    }
    return {{"file", file}};
}

json clear_faults(Model& model, Arguments& arguments) {
    std::string const file = arguments.text("file");
    arguments.end();
    faults_of(model, file).clear();
    return {{"file", file}};
}

}  // namespace

void add_fault_commands(Command_table& table, Model& model) {
    table.add("fault", [&model](Arguments& arguments) { return fault(model, arguments); });
    table.add("clear_faults", [&model](Arguments& arguments) { return clear_faults(model, arguments); });
}

}  // namespace bench::hypervisor
