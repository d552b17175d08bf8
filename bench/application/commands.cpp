#include "bench/application/commands.h"

#include "base/hex.h"
#include "bench/json_lines/clock.h"

namespace bench::application {

namespace {

using nlohmann::json;

Means means_of(Arguments& arguments) {
    auto const text = arguments.text("what");
    for (auto const means : {Means::ecu_alive, Means::com_alive, Means::car_wake_up}) {
        if (text == name(means)) {
            return means;
        }
    }
    throw Command_error("\"what\" is \"ecu_alive\", \"com_alive\" or \"cwu\"");
}

Request request_of(Arguments& arguments, Means means, bool with_number) {
    Request request;
    if (means == Means::com_alive) {
        auto const bits = base::from_hex(arguments.text("bits"));
        if (!bits) {
            throw Command_error("\"bits\" must be bytes such as \"00 00 01\"");
        }
        request.cab_bits = *bits;
    }
    if (with_number && means != Means::ecu_alive) {
        request.ac_number = static_cast<std::uint8_t>(arguments.number_or("ac", 0, 0, 255));
    }
    constexpr std::int64_t k_longest_wait_ms = 60'000;
    request.patience =
        std::chrono::milliseconds(arguments.number_or("wait_ms", request.patience.count(), 0, k_longest_wait_ms));
    arguments.end();
    return request;
}

/// Makes the call and tells how long it took.
template <class Call>
json timed(Call const& call) {
    auto const start = monotonic_ns();
    try {
        call();
    } catch (std::exception const& error) {
        throw Command_error(error.what());
    }
    return {{"us", (monotonic_ns() - start) / 1000}};
}

}  // namespace

void add_commands(Command_table& table, Application& application) {
    table.add("request", [&application](Arguments& arguments) {
        auto const means = means_of(arguments);
        auto const request = request_of(arguments, means, true);
        return timed([&] { application.request(means, request); });
    });
    table.add("release", [&application](Arguments& arguments) {
        auto const means = means_of(arguments);
        auto const request = request_of(arguments, means, false);
        return timed([&] { application.release(means, request); });
    });
    table.add("restart", [&application](Arguments& arguments) {
        auto const type = static_cast<std::uint8_t>(arguments.number("type", 0, 255));
        arguments.end();
        return timed([&] { application.restart(type); });
    });
}

}  // namespace bench::application
