#include "tools/commands.h"
#include "tools/page/words.h"
#include "tools/service_call.h"
#include "ximo/ap/statemanager/dsa_interface_proxy.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>

namespace statectl {

namespace {

constexpr char const* k_instance = "DSA_Interface";

struct Restart_options : Call_options {
    std::uint8_t type{0};
};

int restart(Restart_options const& options) {
    return call<ximo::ap::statemanager::proxy::DSAInterfaceProxy>(
        options, restart_request_text(options.type), [&](auto& proxy) { return proxy.RequestRestart(options.type); });
}

}  // namespace

void add_restart_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Restart_options>();
    options->instance = k_instance;
    auto* const command = program.add_subcommand("restart", "Restart for diagnostics");
    command->add_option("WHAT", options->type, "vm: this virtual machine, m3: the microcontroller, or a type by number")
        ->required()
        ->transform(CLI::CheckedTransformer(std::map<std::string, int>{{"vm", 1}, {"m3", 5}}, CLI::ignore_case) |
                    CLI::Range(0, 255));
    add_call_options(*command, *options);
    command->callback([options, &chosen] { chosen = [options] { return restart(*options); }; });
}

}  // namespace statectl
