#include "busy_threads.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <system_error>

#include <unistd.h>

namespace faults {

namespace {

using Seconds = std::chrono::duration<double>;

/// Processor time of each thread.
std::map<std::string, double> processor_times(pid_t pid) {
    static auto const ticks = static_cast<double>(::sysconf(_SC_CLK_TCK));
    std::map<std::string, double> times;
    std::error_code ended;
    for (std::filesystem::directory_iterator entry("/proc/" + std::to_string(pid) + "/task", ended), end;
         !ended && entry != end; entry.increment(ended)) {
        std::ifstream file(entry->path() / "stat");
        std::string text;
        std::getline(file, text);
        // The fields after the name in parentheses: the 12th and 13th are user and system time.
        auto const name_end = text.rfind(')');
        if (name_end == std::string::npos) {
            continue;
        }
        std::string field;
        double user = 0;
        double system = 0;
        std::istringstream fields(text.substr(name_end + 1));
        for (int skipped = 0; skipped < 11; ++skipped) {
            fields >> field;
        }
        fields >> user >> system;
        times[entry->path().filename().string() + text.substr(text.find(' '), name_end + 1 - text.find(' '))] =
            (user + system) / ticks;
    }
    return times;
}

std::string busy_for(pid_t pid, Seconds duration, std::function<void()> const& wait) {
    constexpr double k_part = 0.25;
    auto const before = processor_times(pid);
    auto const begin = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - begin < duration) {
        wait();
    }
    Seconds const taken = std::chrono::steady_clock::now() - begin;
    for (auto const& [thread, time] : processor_times(pid)) {
        auto const found = before.find(thread);
        if (found != before.end() && time - found->second > k_part * taken.count()) {
            return thread;
        }
    }
    return {};
}

}  // namespace

std::string busy_thread(pid_t pid, std::function<void()> const& wait) {
    auto const thread = busy_for(pid, Seconds(0.2), wait);
    return thread.empty() || busy_for(pid, Seconds(1.5), wait) != thread ? std::string() : thread;
}

}  // namespace faults
