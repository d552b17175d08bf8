#include "linux_machine.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/reboot.h>
#include <sys/syscall.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace power_off {

namespace {

namespace fs = std::filesystem;

// The kernel keeps so much of a program's name.
constexpr std::size_t k_comm_length = 15;

class Linux_process : public Process {
 public:
    explicit Linux_process(int descriptor) : descriptor_(descriptor) {}
    ~Linux_process() override { ::close(descriptor_); }
    Linux_process(Linux_process const&) = delete;
    Linux_process& operator=(Linux_process const&) = delete;

    void terminate() override { send(SIGTERM); }
    void kill() override { send(SIGKILL); }

    bool await_end(Clock::time_point deadline) override {
        auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd source{descriptor_, POLLIN, 0};
        return ::poll(&source, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0))) > 0;
    }

 private:
    void send(int signal) const { ::syscall(SYS_pidfd_send_signal, descriptor_, signal, nullptr, 0); }

    int descriptor_;  // of the process, from pidfd_open
};

std::vector<pid_t> processes_named(std::string const& name) {
    std::vector<pid_t> found;
    std::error_code ignored;
    for (auto const& entry : fs::directory_iterator("/proc", ignored)) {
        auto const number = static_cast<pid_t>(std::strtol(entry.path().filename().c_str(), nullptr, 10));
        std::string comm;
        if (number > 1 && std::getline(std::ifstream(entry.path() / "comm"), comm) &&
            comm == name.substr(0, k_comm_length)) {
            found.push_back(number);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

// The service manager ends what still runs, unmounts and switches off, without the orderly stop of every service.
void ask_service_manager() {
    sd_bus* bus = nullptr;
    if (::sd_bus_open_system(&bus) < 0 ||
        ::sd_bus_call_method(bus, "org.freedesktop.systemd1", "/org/freedesktop/systemd1",
                             "org.freedesktop.systemd1.Manager", "PowerOff", nullptr, nullptr, "") < 0) {
        std::puts("The service manager can't be asked to switch off");
        std::fflush(stdout);
    }
    ::sd_bus_unref(bus);
}

}  // namespace

std::unique_ptr<Process> Linux_machine::find(std::string const& name) {
    for (pid_t const pid : processes_named(name)) {
        auto const descriptor = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
        if (descriptor >= 0) {
            return std::make_unique<Linux_process>(descriptor);
        }
    }
    return nullptr;
}

// As a rule the service manager ends this process while it waits. When it hangs, the kernel is asked directly.
void Linux_machine::power_off(Clock::time_point deadline) {
    ::sync();
    ask_service_manager();
    std::this_thread::sleep_until(deadline);
    ::sync();
    ::reboot(RB_POWER_OFF);
}

}  // namespace power_off
