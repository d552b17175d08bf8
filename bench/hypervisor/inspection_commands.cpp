#include "bench/hypervisor/commands.h"
#include "bench/hypervisor/journal.h"

namespace bench::hypervisor {

namespace {

using nlohmann::json;

json journal(Model& model, Arguments& arguments) {
    std::string const name = arguments.text("file");
    arguments.end();
    auto const file = model.control_file(name);
    if (!file) {
        throw Command_error("there is no control file \"" + name + "\"");
    }
    json requests = json::array();
    for (Request const& request : file->journal()) {
        requests.push_back(describe(name, request));
    }
    return {{"file", name}, {"requests", requests}};
}

json list(Model& model, Arguments& arguments) {
    arguments.end();
    json devices = json::array();
    for (auto const& device : model.devices()) {
        devices.push_back({{"device", device->name()},
                           {"event_types", device->event_types()},
                           {"readers", device->readers()},
                           {"hung_up", device->hung_up()}});
    }
    json files = json::array();
    for (auto const& file : model.control_files()) {
        files.push_back({{"file", file->name()}, {"requests", file->journal().size()}});
    }
    return {{"devices", devices}, {"files", files}};
}

}  // namespace

void add_inspection_commands(Command_table& table, Model& model) {
    table.add("journal", [&model](Arguments& arguments) { return journal(model, arguments); });
    table.add("list", [&model](Arguments& arguments) { return list(model, arguments); });
}

}  // namespace bench::hypervisor
