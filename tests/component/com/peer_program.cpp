// A process that offers services to the tests. Takes commands as JSON lines on standard input, answers them and tells
// of calls on standard output. The arguments are the names of instances that are offered at once.
#include "bench/json_lines/command_table.h"
#include "peer_services.h"
#include "tarq/com/runtime/component_singleton.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

using nlohmann::json;

std::vector<std::uint8_t> bytes(bench::Arguments& arguments) {
    auto const* const value = arguments.find("bytes");
    return value == nullptr ? std::vector<std::uint8_t>() : value->get<std::vector<std::uint8_t>>();
}

void add_commands(bench::Command_table& commands, com_test::Peer_services& services) {
    commands.add("offer", [&services](bench::Arguments& arguments) {
        services.offer(arguments.text("instance"));
        return json();
    });
    commands.add("withdraw", [&services](bench::Arguments& arguments) {
        services.withdraw(arguments.text("instance"));
        return json();
    });
    commands.add("update", [&services](bench::Arguments& arguments) {
        services.network(arguments.text("instance")).NetworkState.Update(bytes(arguments));
        return json();
    });
    commands.add("send", [&services](bench::Arguments& arguments) {
        services.user_data(arguments.text("instance")).UserDataChanged.Send(bytes(arguments));
        return json();
    });
    commands.add("continue", [&services](bench::Arguments&) {
        services.let_go();
        return json();
    });
}

}  // namespace

int main(int argc, char** argv) {
    tarq::com::runtime::Component_singleton const runtime(false, "");
    com_test::Peer_services services([](json const& event) { com_test::print(event); });
    bench::Command_table commands;
    add_commands(commands, services);
    for (int word = 1; word < argc; ++word) {
        services.offer(argv[word]);
    }
    com_test::print({{"event", "ready"}});
    std::string line;
    while (std::getline(std::cin, line)) {
        com_test::print(commands.answer(line));
    }
    services.let_go();
    return 0;
}
