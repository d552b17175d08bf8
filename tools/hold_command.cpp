// ap_statectl hold: three processes. ap_statectl starts a guardian, which holds the request, and the command. The
// guardian watches the command by its process descriptor, so that the request is released however the command ends, and
// held until then however ap_statectl ends. Where the guardian is killed, ap_statectl releases after the command.

#include "base/descriptor.h"
#include "base/signals.h"
#include "tarq/com/runtime/component_singleton.h"
#include "tools/cab_options.h"
#include "tools/commands.h"
#include "tools/service_call.h"
#include "ximo/ap/statemanager/keep_awake.h"
#include "ximo/ap/statemanager/state_management_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_com_alive_interface_proxy.h"
#include "ximo/ap/statemanager/state_management_cwu_interface_proxy.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace statectl {

namespace {

using ximo::ap::statemanager::Car_wake_up;
using ximo::ap::statemanager::Com_alive;
using ximo::ap::statemanager::Ecu_alive;
using ximo::ap::statemanager::Keep_awake;
namespace proxy = ximo::ap::statemanager::proxy;

struct Hold_options : Cab_options {
    std::string instance;
    std::vector<std::string> words;
    std::int64_t wait_ms{2000};
    std::int64_t limit_s{0};
};

/// How something is held, and why it can't be when nobody offers it.
struct Holding {
    std::function<std::unique_ptr<Keep_awake>(Hold_options const&)> keep;
    std::string (*not_offered)(std::string const& instance);
};

constexpr char const* k_held = "held";
constexpr char const* k_watching = "watching";

/// One end of the way between ap_statectl and the guardian. Each message arrives whole; the other's end is an empty
/// one.
class Channel {
 public:
    explicit Channel(int descriptor) : descriptor_(descriptor) {}

    void send(std::string const& text) const { ::send(descriptor_.number(), text.data(), text.size(), MSG_NOSIGNAL); }
    std::string receive() const {
        std::array<char, 4096> text{};
        auto const count = ::recv(descriptor_.number(), text.data(), text.size(), 0);
        return count > 0 ? std::string(text.data(), static_cast<std::size_t>(count)) : "";
    }

 private:
    base::Descriptor descriptor_;
};

std::pair<std::unique_ptr<Channel>, std::unique_ptr<Channel>> make_channel() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "There can be no channel");
    }
    return {std::make_unique<Channel>(ends[0]), std::make_unique<Channel>(ends[1])};
}

pid_t checked(pid_t process) {
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "There can be no process");
    }
    return process;
}

void await_end_of(pid_t process, Channel const& channel) {
    base::Descriptor const command(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    channel.send(k_watching);
    if (command.number() < 0) {
        channel.receive();  // an old kernel: the end of ap_statectl will do
        return;
    }
    pollfd ended{command.number(), POLLIN, 0};
    while (::poll(&ended, 1, -1) < 0 && errno == EINTR) {
    }
}

/// What the guardian does. Signals of a terminal or a service manager are for the command.
void guard(Hold_options const& options, Holding const& holding, Channel const& channel) {
    base::All_signals_blocked const blocked;
    ::setsid();
    try {
        tarq::com::runtime::Component_singleton const communication(false, "");
        auto const hold = holding.keep(options);
        if (!hold->await(std::chrono::milliseconds(options.wait_ms))) {
            channel.send(holding.not_offered(options.instance));
            return;
        }
        channel.send(k_held);
        auto const process = channel.receive();
        if (!process.empty()) {
            await_end_of(static_cast<pid_t>(std::stol(process)), channel);
        }
    } catch (std::exception const& error) {
        channel.send(error.what());
    }
}

[[noreturn]] void become(std::vector<std::string>& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    ::execvp(arguments.front(), arguments.data());
    constexpr int k_not_found = 127;
    std::fprintf(stderr, "ap_statectl: %s: %s\n", words.front().c_str(), std::strerror(errno));
    std::_Exit(k_not_found);
}

/// What the command becomes it becomes once it is watched. Without ap_statectl it becomes nothing.
[[noreturn]] void become_when_told(std::vector<std::string>& words, std::unique_ptr<Channel> const& own,
                                   std::unique_ptr<Channel>& other) {
    other.reset();
    if (own->receive().empty()) {
        std::_Exit(k_failure);
    }
    become(words);
}

volatile sig_atomic_t command_to_tell = 0;

void tell_command(int signal) {
    ::kill(command_to_tell, signal);
}

/// As long as it lives, what is sent to ap_statectl alone reaches the command; what a terminal sends has come to both.
class Signals_left_to {
 public:
    explicit Signals_left_to(pid_t command) {
        command_to_tell = command;
        for (std::size_t i = 0; i < k_signals.size(); ++i) {
            bool const is_of_terminal = k_signals[i] == SIGINT || k_signals[i] == SIGQUIT;
            before_[i] = std::signal(k_signals[i], is_of_terminal ? SIG_IGN : tell_command);
        }
    }
    ~Signals_left_to() {
        for (std::size_t i = 0; i < k_signals.size(); ++i) {
            std::signal(k_signals[i], before_[i]);
        }
    }
    Signals_left_to(Signals_left_to const&) = delete;
    Signals_left_to& operator=(Signals_left_to const&) = delete;

 private:
    static constexpr std::array<int, 4> k_signals{SIGTERM, SIGHUP, SIGINT, SIGQUIT};
    std::array<void (*)(int), 4> before_{};
};

/// Its number stays its own until it is awaited.
void await_end_of(pid_t process) {
    siginfo_t ended{};
    while (::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
}

int await(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    constexpr int k_signal = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : k_signal + WTERMSIG(status);
}

/// The guardian once it holds; 0 when it does not, which is told.
pid_t start_guardian(Hold_options const& options, Holding const& holding, std::unique_ptr<Channel>& own) {
    std::unique_ptr<Channel> other;
    std::tie(own, other) = make_channel();
    auto const guardian = checked(::fork());
    if (guardian == 0) {
        own.reset();
        guard(options, holding, *other);
        std::_Exit(k_success);
    }
    other.reset();
    auto const answer = own->receive();
    if (answer == k_held) {
        return guardian;
    }
    std::fprintf(stderr, "ap_statectl: %s\n", answer.empty() ? "the holding process has ended" : answer.c_str());
    await(guardian);
    return 0;
}

/// What a guardian that was killed would have released: it is asked for once more, and given up at once.
void release_in_its_place(Hold_options const& options, Holding const& holding) {
    std::fprintf(stderr, "ap_statectl: the holding process was killed; what it held is released now\n");
    tarq::com::runtime::Component_singleton const communication(false, "");
    holding.keep(options)->await(std::chrono::milliseconds(options.wait_ms));
}

int hold(Hold_options& options, Holding const& holding) {
    std::unique_ptr<Channel> channel;
    auto const guardian = start_guardian(options, holding, channel);
    if (guardian == 0) {
        return k_failure;
    }
    auto [to_command, own_of_command] = make_channel();
    auto const command = checked(::fork());
    if (command == 0) {
        become_when_told(options.words, own_of_command, to_command);
    }
    own_of_command.reset();
    {
        Signals_left_to const signals(command);
        channel->send(std::to_string(command));
        channel->receive();  // from here on it is watched
        to_command->send(k_watching);
        await_end_of(command);
    }
    int const status = await(command);
    if (await(guardian) != k_success) {
        release_in_its_place(options, holding);
    }
    return status;
}

CLI::App* add_hold(CLI::App& hold_command, char const* name, char const* description,
                   std::shared_ptr<Hold_options> const& options, Action& chosen, Holding holding) {
    constexpr std::int64_t k_longest_ms = 86'400'000;
    auto* const command = hold_command.add_subcommand(name, description);
    command->add_option("INSTANCE", options->instance, "Instance name of the application")->required();
    command->add_option("COMMAND", options->words, "The command and its arguments, after --")->required();
    command->add_option("--wait", options->wait_ms, "Milliseconds to wait for the instance to be offered")
        ->check(CLI::Range(std::int64_t{0}, k_longest_ms))
        ->capture_default_str();
    command->add_option("--limit", options->limit_s, "Seconds after which it is released although the command runs")
        ->check(CLI::Range(std::int64_t{0}, k_longest_ms))
        ->capture_default_str();
    command->callback([options, &chosen, holding = std::move(holding)] {
        chosen = [options, holding] { return hold(*options, holding); };
    });
    return command;
}

template <class What>
std::unique_ptr<Keep_awake> keep(Hold_options const& options, What what) {
    return std::make_unique<Keep_awake>(options.instance, std::move(what),
                                        Keep_awake::Options{std::chrono::seconds(options.limit_s), {}});
}

}  // namespace

void add_hold_command(CLI::App& program, Action& chosen) {
    auto const options = std::make_shared<Hold_options>();
    auto* const command = program.add_subcommand("hold", "Keep the machine awake while a command runs");
    command->require_subcommand(1);
    add_hold(*command, "ecu-alive", "Keep the ECU alive", options, chosen,
             {[](auto const& told) { return keep(told, Ecu_alive()); },
              not_offered<proxy::StateManagementAliveInterfaceProxy>});
    auto* const com_alive = add_hold(*command, "com-alive", "Keep communication alive", options, chosen,
                                     {[](auto const& told) {
                                          return keep(told, Com_alive{cab_bits(told), told.ac_number});
                                      },
                                      not_offered<proxy::StateManagementComAliveInterfaceProxy>});
    add_cab_options(*com_alive, *options);
    add_ac_option(*com_alive, *options);
    auto* const cwu = add_hold(*command, "cwu", "Keep the car-wake-up request raised", options, chosen,
                               {[](auto const& told) { return keep(told, Car_wake_up{told.ac_number}); },
                                not_offered<proxy::StateManagementCWUInterfaceProxy>});
    add_ac_option(*cwu, *options);
}

}  // namespace statectl
