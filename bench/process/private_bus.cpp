#include "bench/process/private_bus.h"

#include <csignal>
#include <fstream>
#include <stdexcept>

#include <poll.h>
#include <unistd.h>

namespace bench {

namespace {

constexpr int k_patience_ms = 10'000;

std::string write_configuration(std::string const& directory, std::string const& address) {
    std::string path = directory + "/bus.conf";
    std::ofstream(path) << "<busconfig><type>system</type><listen>" << address << "</listen>"
                        << R"(<auth>EXTERNAL</auth><policy context="default"><allow user="*"/><allow own="*"/>)"
                        << R"(<allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>)";
    return path;
}

}  // namespace

Private_bus::Private_bus(std::string const& directory) : address_("unix:path=" + directory + "/bus") {
    std::string const configuration = write_configuration(directory, address_);
    daemon_ = std::make_unique<Child_process>(std::vector<std::string>{"dbus-daemon", "--config-file=" + configuration,
                                                                       "--nofork", "--nopidfile", "--print-address=1"},
                                              std::vector<std::string>{});
    // It prints its address once it listens.
    pollfd entry{daemon_->output(), POLLIN, 0};
    char byte = 0;
    if (::poll(&entry, 1, k_patience_ms) != 1 || ::read(daemon_->output(), &byte, 1) != 1) {
        throw std::runtime_error("dbus-daemon did not start");
    }
}

Private_bus::~Private_bus() {
    daemon_->signal(SIGTERM);
}

}  // namespace bench
