#include "tools/time_text.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace statectl {

std::string time_text(std::chrono::system_clock::time_point time) {
    auto const milliseconds = std::chrono::floor<std::chrono::milliseconds>(time);
    auto const seconds = std::chrono::floor<std::chrono::seconds>(milliseconds);
    auto const count = std::chrono::system_clock::to_time_t(seconds);
    std::tm parts{};
    ::localtime_r(&count, &parts);
    std::array<char, 32> date{};
    std::array<char, 16> zone{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::strftime(zone.data(), zone.size(), "%z", &parts);
    std::array<char, 8> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%03d", static_cast<int>((milliseconds - seconds).count()));
    return std::string(date.data()) + fraction.data() + zone.data();
}

}  // namespace statectl
