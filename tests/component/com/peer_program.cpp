// A process that offers services to the tests. Takes commands as JSON lines on standard input, answers them and tells
// of calls on standard output. The arguments are the names of instances that are offered at once.
#include "bench/json_lines/command_table.h"
#include "client_fixture.h"
#include "peer_services.h"
#include "tarq/com/runtime/component_singleton.h"

#include <atomic>
#include <csignal>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<std::time_t> g_seconds_set_back{0};

}  // namespace

// The wall clock of this process alone can be set back; its libraries read it here as well.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    auto const result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_REALTIME && result == 0) {
        time->tv_sec -= g_seconds_set_back;
    }
    return result;
}

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
    commands.add("stop offering", [&services](bench::Arguments& arguments) {
        services.network(arguments.text("instance")).StopOfferService();
        return json();
    });
    commands.add("offer again", [&services](bench::Arguments& arguments) {
        services.network(arguments.text("instance")).OfferService();
        return json();
    });
    commands.add("set clock back", [](bench::Arguments& arguments) {
        g_seconds_set_back += arguments.number("seconds", 1, 1'000'000);
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

int succeeded_calls(std::string const& instance, std::int64_t times) {
    com_test::User_data_proxy proxy(com_test::found<com_test::User_data_proxy>(instance));
    int succeeded = 0;
    for (std::int64_t call = 0; call < times; ++call) {
        succeeded += com_test::succeeds(proxy.SetUserData({2})) ? 1 : 0;
    }
    return succeeded;
}

// A subscription that tells of each sample.
struct Watched_field {
    explicit Watched_field(std::string const& instance) : proxy(com_test::found<com_test::Network_proxy>(instance)) {
        proxy.NetworkState.SetReceiveHandler([this] {
            proxy.NetworkState.Update();
            com_test::print({{"event", "sample"}, {"bytes", *proxy.NetworkState.GetCachedSamples().back()}});
        });
        proxy.NetworkState.Subscribe(1);
    }

    com_test::Network_proxy proxy;
};

void add_client_commands(bench::Command_table& commands, std::unique_ptr<com_test::Network_proxy>& subscriber,
                         std::unique_ptr<Watched_field>& watched) {
    commands.add("watch", [&watched](bench::Arguments& arguments) {
        watched = std::make_unique<Watched_field>(arguments.text("instance"));
        return json();
    });
    commands.add("subscribe", [&subscriber](bench::Arguments& arguments) {
        auto const handle = com_test::found<com_test::Network_proxy>(arguments.text("instance"));
        subscriber = std::make_unique<com_test::Network_proxy>(handle);
        subscriber->NetworkState.Subscribe(1);
        return json();
    });
    commands.add("call and stand still", [](bench::Arguments& arguments) {
        com_test::Network_proxy proxy(com_test::found<com_test::Network_proxy>(arguments.text("instance")));
        proxy.RequestNetwork({1}).get();
        auto const future = proxy.RequestNetwork({2});
        ::raise(SIGSTOP);
        future.wait();
        return json{{"event", "went on"}, {"outcome", com_test::error_of(proxy.RequestNetwork({3}))}};
    });
    commands.add("call", [](bench::Arguments& arguments) {
        auto const instance = arguments.text("instance");
        return json{{"succeeded", succeeded_calls(instance, arguments.number("times", 1, 1'000'000))}};
    });
}

}  // namespace

int main(int argc, char** argv) {
    tarq::com::runtime::Component_singleton const runtime(false, "");
    com_test::Peer_services services([](json const& event) { com_test::print(event); });
    bench::Command_table commands;
    add_commands(commands, services);
    std::unique_ptr<com_test::Network_proxy> subscriber;
    std::unique_ptr<Watched_field> watched;
    add_client_commands(commands, subscriber, watched);
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
