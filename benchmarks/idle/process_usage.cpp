#include "process_usage.h"

#include <filesystem>
#include <fstream>
#include <numeric>
#include <string>

namespace benchmarks {

namespace {

std::string proc(pid_t process) {
    return "/proc/" + std::to_string(process);
}

std::int64_t value_of(pid_t process, std::string const& name) {
    std::ifstream status(proc(process) + "/status");
    for (std::string word; status >> word;) {
        std::int64_t value = 0;
        if (word == name + ":" && status >> value) {
            return value;
        }
    }
    return 0;
}

}  // namespace

Usage usage_of(pid_t process) {
    Usage usage;
    for (auto const& directory : std::filesystem::directory_iterator(proc(process) + "/task")) {
        Thread_usage thread;
        std::int64_t waiting_ns = 0;
        std::getline(std::ifstream(directory.path() / "comm"), thread.name);
        std::ifstream(directory.path() / "schedstat") >> thread.running_ns >> waiting_ns >> thread.runs;
        usage[std::stoi(directory.path().filename())] = thread;
    }
    return usage;
}

Usage operator-(Usage const& now, Usage const& before) {
    Usage difference = now;
    for (auto& [id, thread] : difference) {
        if (auto const earlier = before.find(id); earlier != before.end()) {
            thread.running_ns -= earlier->second.running_ns;
            thread.runs -= earlier->second.runs;
        }
    }
    return difference;
}

std::int64_t running_ns(Usage const& usage) {
    return std::accumulate(usage.begin(), usage.end(), std::int64_t{0},
                           [](std::int64_t sum, auto const& thread) { return sum + thread.second.running_ns; });
}

Memory memory_of(pid_t process) {
    return {value_of(process, "VmRSS"), value_of(process, "RssAnon")};
}

}  // namespace benchmarks
