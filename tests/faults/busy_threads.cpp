#include "busy_threads.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>

namespace faults {

namespace {

using Seconds = std::chrono::duration<double>;

/// How long each thread, by number and name, has had something to do: had a processor, or waited for one, so that a
/// busy machine hides nothing.
std::map<std::string, Seconds> busy_times(pid_t pid) {
    std::map<std::string, Seconds> times;
    std::error_code ended;
    for (std::filesystem::directory_iterator entry("/proc/" + std::to_string(pid) + "/task", ended), end;
         !ended && entry != end; entry.increment(ended)) {
        std::string name;
        std::getline(std::ifstream(entry->path() / "comm"), name);
        std::int64_t running = 0;
        std::int64_t waiting = 0;
        if (std::ifstream(entry->path() / "schedstat") >> running >> waiting) {
            times[entry->path().filename().string() + ' ' + name] = std::chrono::nanoseconds(running + waiting);
        }
    }
    return times;
}

std::string busy_for(pid_t pid, Seconds duration, std::function<void()> const& wait) {
    constexpr double k_part = 0.9;
    auto const before = busy_times(pid);
    auto const begin = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - begin < duration) {
        wait();
    }
    Seconds const taken = std::chrono::steady_clock::now() - begin;
    for (auto const& [thread, time] : busy_times(pid)) {
        auto const found = before.find(thread);
        if (found != before.end() && time - found->second > k_part * taken) {
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
