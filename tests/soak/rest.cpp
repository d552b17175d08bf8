#include "rest.h"

#include "base/hex.h"

#include <filesystem>
#include <fstream>

namespace soak {

namespace {

using bench::rules::State;
using nlohmann::json;

// A daemon that has lost its connection to the bus makes the next one with its next call.
constexpr long k_growth_descriptors = 1;

#ifdef SANITIZED
constexpr long k_growth_kb = 1'000'000;  // a sanitizer keeps what was freed
#else
constexpr long k_growth_kb = 3'072;
#endif

std::vector<std::uint8_t> bytes_of(json const& hex) {
    return base::from_hex(hex.get<std::string>()).value_or(std::vector<std::uint8_t>());
}

std::string hex(Holds::Bytes const& bytes) {
    return base::to_hex(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

}  // namespace

std::string Rest::missing(State now, bool has_suspended) {
    for (auto const& client : machine_.clients()) {
        if (!client.is_connected || !client.owed.empty()) {
            return client.name + (client.is_connected ? "'s answer" : "'s connection");
        }
    }
    auto missing = missing_of_network(now);
    return missing.empty() && now == State::running && has_suspended ? missing_of_resources() : missing;
}

std::string Rest::missing_of_network(State now) const {
    auto const node = machine_.tell("node", {{"do", "list"}});
    return fault_of({bytes_of(node.at("requests")), bytes_of(node.at("user_data"))}, now, circumstances_, holds_,
                    losses_, with_cab_bits_);
}

std::string fault_of(Told_network const& told, State now, Circumstances const& circumstances, Holds const& holds,
                     Losses const& losses, bool with_cab_bits) {
    if (losses.may_miss_holds() || now == State::starting_up) {
        return {};
    }
    bool const is_suspended = now == State::preparing || now == State::prepared_sd || now == State::shutting_down;
    auto wanted = circumstances.nm_usage && !is_suspended ? holds.requests() : Holds::Bytes{};
    if (circumstances.nm_usage && now == State::running) {
        wanted[0] |= k_default_bit;
    }
    for (std::size_t place = 0; place < Holds::k_bytes; ++place) {
        unsigned const may_be = is_suspended && place == 2 && holds.have_kept_ecu_alive() ? 1U : 0U;
        unsigned const is_more = told.requests.at(place) & ~wanted.at(place) & ~may_be;
        unsigned const is_less = wanted.at(place) & ~told.requests.at(place);
        if (is_less != 0 || (is_more != 0 && !losses.may_miss_releases())) {
            return "the network is asked for " + base::to_hex(told.requests) + ", not " + hex(wanted);
        }
    }
    auto const data = circumstances.nm_usage && !is_suspended ? holds.user_data() : Holds::Bytes{};
    std::size_t const sent = with_cab_bits ? 6 : 3;
    for (std::size_t place = 0; place < sent; ++place) {
        if ((place < told.user_data.size() ? told.user_data[place] : 0) != data.at(place)) {
            return "the user data is " + base::to_hex(told.user_data) + ", not " + hex(data);
        }
    }
    return {};
}

// Compared with the first rest in the same state after a suspend, when all that is made at the first time is there.
std::string Rest::missing_of_resources() {
    auto const now = used();
    first_use_ = first_use_.value_or(now);
    return growth(*first_use_, now);
}

std::string growth(Used const& first, Used const& now) {
    if (now.descriptors > first.descriptors + k_growth_descriptors) {
        return "a descriptor: there are " + std::to_string(now.descriptors) + ", first were " +
               std::to_string(first.descriptors);
    }
    if (now.threads > first.threads) {
        return "a thread: there are " + std::to_string(now.threads) + ", first were " + std::to_string(first.threads);
    }
    if (now.memory_kb > first.memory_kb + k_growth_kb) {
        return "memory: there are " + std::to_string(now.memory_kb) + " KiB, first were " +
               std::to_string(first.memory_kb);
    }
    return {};
}

Used Rest::used() const {
    auto const folder = "/proc/" + std::to_string(machine_.daemon().pid());
    Used used;
    for (auto const& entry : std::filesystem::directory_iterator(folder + "/fd")) {
        used.descriptors += entry.path().empty() ? 0 : 1;
    }
    std::ifstream status(folder + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("Threads:", 0) == 0) {
            used.threads = std::stol(line.substr(8));
        } else if (line.rfind("RssAnon:", 0) == 0) {
            used.memory_kb = std::stol(line.substr(8));
        }
    }
    return used;
}

}  // namespace soak
