#include "bench/network/options.h"

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <map>
#include <stdexcept>

namespace bench::network {

char const* const k_usage =
    "usage: bench_network_node ADDRESS [OTHER_ADDRESS]... [option]...\n"
    "A node of the vehicle's network. Addresses are loopback addresses such as 127.0.0.11.\n"
    "  --id N               node identifier, 0 to 255 (default: last byte of ADDRESS)\n"
    "  --port N             UDP port of all nodes (default 30500)\n"
    "  --request-bytes N    length of the network requests, 1 to 32 (default 6)\n"
    "  --cycle MS           time between two messages (default 100)\n"
    "  --repeat-message MS  how long a node shows itself after a wake-up (default 300)\n"
    "  --timeout MS         silence after which a ready node prepares for sleep (default 400)\n"
    "  --wait-bus-sleep MS  from there to bus sleep (default 300)\n"
    "  --reset MS           how long a request of another node counts unrepeated (default 300)\n"
    "  --capture FILE       write what is sent and received (pcap)\n"
    "  --offer INSTANCE     offer the network services under that name\n"
    "  --offer-silent INSTANCE  the same, and tell no network state before it changes\n";

namespace {

constexpr long k_longest_ms = 3'600'000;

long number_of(std::string const& option, std::string const& word, long lowest, long highest) {
    char* end = nullptr;
    errno = 0;
    long const number = std::strtol(word.c_str(), &end, 10);
    if (word.empty() || *end != '\0' || errno != 0 || number < lowest || number > highest) {
        throw std::invalid_argument(option + " takes a number from " + std::to_string(lowest) + " to " +
                                    std::to_string(highest));
    }
    return number;
}

std::uint32_t address_of(std::string const& word) {
    auto const address = loopback_address(word);
    if (!address) {
        throw std::invalid_argument("\"" + word + "\" is neither an option nor a loopback address");
    }
    return *address;
}

using Setter = std::function<void(Node_options&, std::string const&)>;

Setter milliseconds_of(char const* name, std::chrono::milliseconds Nm_timing::*timer) {
    return [name, timer](Node_options& options, std::string const& word) {
        options.network.timing.*timer = std::chrono::milliseconds(number_of(name, word, 1, k_longest_ms));
    };
}

std::map<std::string, Setter> const& setters() {
    static auto const& all = *new std::map<std::string, Setter>{
        {"--id",
         [](Node_options& options, std::string const& word) {
             options.network.id = static_cast<std::uint8_t>(number_of("--id", word, 0, 255));
         }},
        {"--port",
         [](Node_options& options, std::string const& word) {
             options.network.own.port = static_cast<std::uint16_t>(number_of("--port", word, 1, 65535));
         }},
        {"--request-bytes",
         [](Node_options& options, std::string const& word) {
             options.network.request_bytes =
                 static_cast<std::size_t>(number_of("--request-bytes", word, 1, k_most_request_bytes));
         }},
        {"--cycle", milliseconds_of("--cycle", &Nm_timing::cycle)},
        {"--repeat-message", milliseconds_of("--repeat-message", &Nm_timing::repeat_message)},
        {"--timeout", milliseconds_of("--timeout", &Nm_timing::timeout)},
        {"--wait-bus-sleep", milliseconds_of("--wait-bus-sleep", &Nm_timing::wait_bus_sleep)},
        {"--reset", milliseconds_of("--reset", &Nm_timing::reset)},
        {"--capture", [](Node_options& options, std::string const& word) { options.capture = word; }},
        {"--offer", [](Node_options& options, std::string const& word) { options.offered = word; }},
        {"--offer-silent", [](Node_options& options, std::string const& word) {
             options.offered = word;
             options.tells_first_state = false;
         }}};
    return all;
}

}  // namespace

Node_options parse_options(std::vector<std::string> const& words) {
    if (words.empty()) {
        throw std::invalid_argument("the node's address is missing");
    }
    Node_options options;
    options.network.own = {address_of(words.front()), k_usual_port};
    options.network.id = static_cast<std::uint8_t>(options.network.own.address);
    for (auto word = words.begin() + 1; word != words.end(); ++word) {
        auto const setter = setters().find(*word);
        if (setter == setters().end()) {
            options.network.others.push_back({address_of(*word), 0});
        } else if (word + 1 == words.end()) {
            throw std::invalid_argument(*word + " needs a value");
        } else {
            ++word;
            setter->second(options, *word);
        }
    }
    for (auto& other : options.network.others) {
        other.port = options.network.own.port;
    }
    return options;
}

}  // namespace bench::network
